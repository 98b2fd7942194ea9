#pragma once

#include "OssRender/Values/OssRdPicture.h"

#include <QImage>
#include <QRect>

#include <utility>

/// The last sharp picture of what is seen, over which is laid what becomes another: as coarse pictures of
/// before and after differ, then as smooth ones do, so all else stays as sharp and exact as it was. Areas are
/// in pixels of the whole, from the top. Not for several threads at once.
class LitLast
{
public:
    bool isEmpty() const { return m_shown.isEmpty(); }

    /// Whether smooth pictures can be laid over it.
    bool isSmooth() const { return !m_smooth.isEmpty(); }

    /// As it is shown.
    const QImage &picture() const { return m_picture; }

    /// Another picture. `isSmooth`: drawn smoothly, not exactly.
    void set(OssRdImage shown, const QImage &picture, bool isSmooth);
    /// One drawn exactly, of the same scene as the smooth one.
    void refine(OssRdImage shown, const QImage &picture);
    /// The whole as a smooth picture of what it is now has it; with all that was exact.
    OssRdImage wholeOf(OssRdImage smooth);

    void setPicture(const QImage &picture) { m_picture = picture; }

    /// Of the same scene; empty: not known.
    const OssRdImage &coarse() const { return m_coarse; }

    void setCoarse(OssRdImage coarse) { m_coarse = std::move(coarse); }

    /// Where another coarse picture differs.
    QRect changed(const OssRdImage &coarse) const;
    /// An area with what another coarse picture has there.
    OssRdImage over(const OssRdImage &coarse, const QRect &area) const;
    /// An area becomes what a smooth picture of it shows; gives it.
    OssRdImage take(const OssRdImage &smooth, const QRect &area);
    /// The picture with one of an area in its place, which is kept if wanted.
    QImage pictureWith(const QImage &part, const QRect &area, bool isKept);

private:
    OssRdImage m_shown;
    OssRdImage m_smooth;
    OssRdImage m_coarse;
    QImage m_picture;
};
