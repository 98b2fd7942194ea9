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

    /// What a part with the signals of an editor says is the editor's word. `value` gives the value
    /// to tell with it, from what the part's signal carries.
    template <class Part, class Value>
    void passOn(Part *part, Value value)
    {
        connect(part, &Part::edited, this,
                [this, value](const auto &...told) { Q_EMIT edited(value(told...)); });
        connect(part, &Part::stepped, this,
                [this, value](const auto &...told) { Q_EMIT stepped(value(told...)); });
        connect(part, &Part::dragged, this,
                [this, value](const auto &...told) { Q_EMIT dragged(value(told...)); });
        connect(part, &Part::dragBegun, this, &OssPropertyEditor::dragBegun);
        connect(part, &Part::dragEnded, this, &OssPropertyEditor::dragEnded);
    }
};
