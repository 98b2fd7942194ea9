#pragma once

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssAttributeEdit.h"

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

    /// The values of what is edited together may differ, as `mixed` tells; this is one of them.
    virtual void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) = 0;

    /// Tells what a choice comes to here, beside its name; an empty meaning tells nothing.
    virtual void explainChoice(const QString &choice, const QString &meaning);

    /// While it is not empty, all edits told of are one step together.
    virtual QString joinKey() const { return {}; }

Q_SIGNALS:
    // `parts`: what of the value the user changed (OssAttributeEdit); none is all of it.
    void edited(const QVariant &value, const QVector<int> &parts = {});
    /// One of many small changes that follow each other, as by a key that is held down.
    void stepped(const QVariant &value, const QVector<int> &parts = {});
    /// A drag; its values are seen at once, and are one edit together.
    void dragBegun();
    void dragged(const QVariant &value, const QVector<int> &parts = {});
    void dragEnded();
    /// The user is done here, by Return or Escape: the keyboard may go back to where it was.
    void left();

protected:
    /// A horizontal row for the editor's parts.
    class QHBoxLayout *makeRow();

    /// What stands in the place of values that differ.
    static QString mixedText();

    /// The same parts whatever is told.
    static auto always(const QVector<int> &parts)
    {
        return [parts](const auto &...) {
            return parts;
        };
    }

    /// What a part with the signals of an editor says is the editor's word. `value` gives the value
    /// to tell with it, and `parts` what of it that changes, from what the part's signal carries.
    template <class Part, class Value, class Parts>
    void passOn(Part *part, Value value, Parts parts)
    {
        const auto told = [this, value, parts](auto signal) {
            return [this, value, parts, signal](const auto &...what) {
                const QVariant now = value(what...);
                Q_EMIT(this->*signal)(now, parts(what...));
            };
        };
        connect(part, &Part::edited, this, told(&OssPropertyEditor::edited));
        connect(part, &Part::stepped, this, told(&OssPropertyEditor::stepped));
        connect(part, &Part::dragged, this, told(&OssPropertyEditor::dragged));
        connect(part, &Part::dragBegun, this, &OssPropertyEditor::dragBegun);
        connect(part, &Part::dragEnded, this, &OssPropertyEditor::dragEnded);
        connect(part, &Part::left, this, &OssPropertyEditor::left);
    }

    template <class Part, class Value>
    void passOn(Part *part, Value value)
    {
        passOn(part, value, always({}));
    }
};
