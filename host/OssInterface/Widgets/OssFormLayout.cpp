#include "OssInterface/Widgets/OssFormLayout.h"

#include <QLabel>
#include <QList>
#include <QWidget>

OssFormLayout::OssFormLayout(QWidget *parent)
    : QFormLayout(parent)
{
    setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    setRowWrapPolicy(QFormLayout::DontWrapRows);
    setHorizontalSpacing(10);
    setVerticalSpacing(6);
}

void OssFormLayout::alignLabels(QWidget *panel)
{
    if (!panel)
        return;
    QList<QWidget *> labels;
    const QList<QFormLayout *> forms = panel->findChildren<QFormLayout *>();
    for (const QFormLayout *form : forms) {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem *item = form->itemAt(row, QFormLayout::LabelRole);
            if (!item || !item->widget())
                continue;
            labels.append(item->widget());
            // A label as wide as its column is aligned by its own rule.
            if (auto *label = qobject_cast<QLabel *>(item->widget()))
                label->setAlignment(form->labelAlignment());
        }
    }
    int width = 0;
    for (const QWidget *label : qAsConst(labels))
        width = qMax(width, label->sizeHint().width());
    for (QWidget *label : qAsConst(labels))
        label->setMinimumWidth(width);
}
