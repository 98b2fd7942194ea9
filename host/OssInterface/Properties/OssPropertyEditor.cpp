#include "OssInterface/Properties/OssPropertyEditor.h"

#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"
#include "OssCore/OssValueText.h"
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

    void showValue(const OssCustomAttribute &attribute, bool) override
    {
        m_label->setText(OssValueText::toText(attribute.value()));
    }

private:
    QLabel *m_label;
};

OssPropertyEditor *textEditor(const QString &kind, QWidget *parent)
{
    if (kind == QLatin1String("file"))
        return new OssFileEditor(parent);
    if (kind == QLatin1String("paragraph"))
        return new OssParagraphEditor(parent);
    if (kind == QLatin1String("curve"))
        return new OssCurveEditor(parent);
    if (kind == QLatin1String("ramp"))
        return new OssRampEditor(parent);
    return new OssLineEditor(parent);
}

} // namespace

OssPropertyEditor::OssPropertyEditor(QWidget *parent)
    : QWidget(parent)
{
}

OssPropertyEditor::~OssPropertyEditor() = default;

QHBoxLayout *OssPropertyEditor::makeRow()
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    return row;
}

OssPropertyEditor *OssPropertyEditor::create(const OssCustomAttribute &attribute, QWidget *parent)
{
    const int type = attribute.value().userType();
    switch (type) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
        return new OssNumberEditor(parent);
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return new OssVectorEditor(parent);
    case QMetaType::Bool:
        return new OssFlagEditor(parent);
    case QMetaType::QString:
        return textEditor(attribute.definition().editor, parent);
    case QMetaType::QStringList:
        return new OssImagesEditor(parent);
    default:
        break;
    }
    if (type == qMetaTypeId<OssColor>())
        return new OssColorEditor(parent);
    if (type == qMetaTypeId<OssUserEnum>())
        return new OssChoiceEditor(parent);
    return new ReadOnlyEditor(parent);
}
