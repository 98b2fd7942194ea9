#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QtGlobal>

/// What is to be told of a node by marks on its picture. Base of OssNgNode.
class OSSNODEGRAPH_EXPORT OssNgNodeMarks
{
public:
    OssNgNodeMarks(const OssNgNodeMarks &) = delete;
    OssNgNodeMarks &operator=(const OssNgNodeMarks &) = delete;

    enum Mark : quint32 {
        SystemShader = 1U << 0,
        Bypassed = 1U << 1,
        Cached = 1U << 2,
        Disabled = 1U << 3,
        GuiActive = 1U << 4,
        Highlighted = 1U << 5,
        Debug = 1U << 6,
        Baked = 1U << 7,
        Stale = 1U << 8,
        Placeholder = 1U << 9,
        PointedOut = 1U << 10,
    };

    bool hasMark(Mark mark) const { return (m_marks & mark) != 0; }

    void setMark(Mark mark, bool on);

    void setSystemShader(bool on) { setMark(SystemShader, on); }

    void setBypassed(bool on) { setMark(Bypassed, on); }

    void setCached(bool on) { setMark(Cached, on); }

    void setDisabled(bool on) { setMark(Disabled, on); }

    void setGuiActive(bool on) { setMark(GuiActive, on); }

    void setHighlighted(bool on) { setMark(Highlighted, on); }

    void setDebug(bool on) { setMark(Debug, on); }

    void setBaked(bool on) { setMark(Baked, on); }

    void setStale(bool on) { setMark(Stale, on); }

    /// Drawn with a dashed outline: a node whose type is not known here.
    void setPlaceholder(bool on) { setMark(Placeholder, on); }

    /// What a dialog speaks of right now: stands out from all others, selected ones too.
    void setPointedOut(bool on) { setMark(PointedOut, on); }

protected:
    OssNgNodeMarks() = default;
    ~OssNgNodeMarks() = default;

    virtual void marksChanged() = 0;

    /// Without marksChanged().
    void copyMarks(const OssNgNodeMarks &other) { m_marks = other.m_marks; }

private:
    quint32 m_marks = 0;
};
