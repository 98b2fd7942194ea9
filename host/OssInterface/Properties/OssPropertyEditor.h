#pragma once

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssInterface/OssInterface_export.h"

#include <QWidget>

/// The widget of a property panel in which one value is edited. It shows what it is told, says what
/// the user wants, and changes nothing itself.
class OSSINTERFACE_EXPORT OssPropertyEditor : public QWidget
{
    Q_OBJECT

public:
    explicit OssPropertyEditor(QWidget *parent);
    ~OssPropertyEditor() override;

    /// What fits the attribute's value, its bounds and its definition's editor. Never null: a value
    /// that nothing fits is shown as text and cannot be edited.
    static OssPropertyEditor *create(const OssCustomAttribute &attribute, QWidget *parent);

    /// Whether the editor can change the value that it shows.
    virtual bool isEditable() const { return true; }

    /// `mixed`: the nodes that are edited together have different values, this is one of them.
    virtual void showValue(const OssCustomAttribute &attribute, bool mixed) = 0;

Q_SIGNALS:
    void edited(const QVariant &value);
    /// One of many small changes that follow each other, as by a key that is held down.
    void stepped(const QVariant &value);
    /// A drag; its values are seen at once, and are one edit together.
    void dragBegun();
    void dragged(const QVariant &value);
    void dragEnded();

protected:
    /// A horizontal row for the editor's parts.
    class QHBoxLayout *makeRow();
};
