#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QLayout>
#include <QList>

/// Puts widgets side by side, each as wide as it likes to be, and goes on below where there is no more room: for rows of
/// controls in palettes that may be narrow. Hidden ones take no room.
class OSSINTERFACE_EXPORT OssFlowLayout : public QLayout
{
public:
    /// Pixels between neighbours, beside and below.
    explicit OssFlowLayout(int spacing, QWidget *parent = nullptr);
    ~OssFlowLayout() override;

    void addItem(QLayoutItem *item) override;

    int count() const override { return m_items.size(); }

    QLayoutItem *itemAt(int index) const override { return m_items.value(index); }

    QLayoutItem *takeAt(int index) override;

    Qt::Orientations expandingDirections() const override { return {}; }

    bool hasHeightForWidth() const override { return true; }

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect &area) override;

private:
    enum class Do { Measure, Place };

    int lay(const QRect &area, Do what) const;

    QList<QLayoutItem *> m_items;
};
