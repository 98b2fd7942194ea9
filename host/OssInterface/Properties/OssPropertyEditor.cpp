#include "OssInterface/Properties/OssPropertyEditor.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"
#include "OssInterface/Properties/OssChoiceEditors.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssNumberEditors.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "OssInterface/Properties/OssTextEditors.h"

#include <QHBoxLayout>
#include <QLabel>

namespace {

/// A value that there is no editor for.
class ReadOnlyEditor final : public OssPropertyEditor
{
public:
    explicit ReadOnlyEditor(QWidget *parent)
        : OssPropertyEditor(parent)
        , m_label(new QLabel(this))
    {
        m_label->setObjectName(QStringLiteral("Muted"));
        m_label->setTextFormat(Qt::PlainText);
        makeRow()->addWidget(m_label);
    }

    bool isEditable() const override { return false; }

    void showValue(const OssCustomAttribute &attribute, const OssMixed &) override
    {
        m_label->setText(OssValueText::toText(attribute.value()));
    }

private:
    QLabel *m_label;
};

template <class Editor>
OssPropertyEditor *make(QWidget *parent)
{
    return new Editor(parent);
}

/// Which widget edits which kind of OssAttributeKind.
const struct
{
    const char *kind;
    OssPropertyEditor *(*make)(QWidget *parent);
} Editors[] = {{"real", make<OssNumberEditor>},        {"integer", make<OssNumberEditor>},
               {"boolean", make<OssFlagEditor>},       {"choice", make<OssChoiceEditor>},
               {"text", make<OssLineEditor>},          {"paragraph", make<OssParagraphEditor>},
               {"file", make<OssFileEditor>},          {"curve", make<OssCurveEditor>},
               {"ramp", make<OssRampEditor>},          {"color", make<OssColorEditor>},
               {"displaycolor", make<OssColorEditor>}, {"vector2", make<OssVectorEditor>},
               {"images", make<OssImagesEditor>},      {"colorspace", make<OssColorSpaceEditor>}};

} // namespace

OssPropertyEditor::OssPropertyEditor(QWidget *parent)
    : QWidget(parent)
{
}

OssPropertyEditor::~OssPropertyEditor() = default;

void OssPropertyEditor::explainChoice(const QString &, const QString &) {}

QString OssPropertyEditor::mixedText()
{
    return tr("mixed");
}

QHBoxLayout *OssPropertyEditor::makeRow()
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    return row;
}

OssPropertyEditor *OssPropertyEditor::create(const OssCustomAttribute &attribute, QWidget *parent)
{
    const OssAttributeKind *kind = OssAttributeKind::of(attribute);
    for (const auto &editor : Editors) {
        if (kind && kind->name == QLatin1String(editor.kind))
            return editor.make(parent);
    }
    return new ReadOnlyEditor(parent);
}
