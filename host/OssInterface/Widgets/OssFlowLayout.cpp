#include "OssInterface/Widgets/OssFlowLayout.h"

#include <algorithm>

OssFlowLayout::OssFlowLayout(int spacing, QWidget *parent)
    : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

OssFlowLayout::~OssFlowLayout()
{
    qDeleteAll(m_items);
}

void OssFlowLayout::addItem(QLayoutItem *item)
{
    m_items.append(item);
    invalidate();
}

QLayoutItem *OssFlowLayout::takeAt(int index)
{
    if (index < 0 || index >= m_items.size())
        return nullptr;
    QLayoutItem *item = m_items.takeAt(index);
    invalidate();
    return item;
}

int OssFlowLayout::heightForWidth(int width) const
{
    return lay({0, 0, width, 0}, Do::Measure);
}

// All in one row.
QSize OssFlowLayout::sizeHint() const
{
    QSize all(0, 0);
    for (const QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        all.rwidth() += size.width() + (all.width() > 0 ? spacing() : 0);
        all.setHeight(std::max(all.height(), size.height()));
    }
    return all;
}

// As narrow as the widest.
QSize OssFlowLayout::minimumSize() const
{
    QSize least(0, 0);
    for (const QLayoutItem *item : m_items) {
        if (!item->isEmpty())
            least = least.expandedTo(item->minimumSize());
    }
    return least;
}

void OssFlowLayout::setGeometry(const QRect &area)
{
    QLayout::setGeometry(area);
    lay(area, Do::Place);
}

/// The height that it takes.
int OssFlowLayout::lay(const QRect &area, Do what) const
{
    QList<QLayoutItem *> row;
    int x = area.x();
    int y = area.y();
    int rowHeight = 0;
    const auto endRow = [&] {
        for (QLayoutItem *item : qAsConst(row)) {
            const QRect place = item->geometry();
            if (what == Do::Place)
                item->setGeometry(
                    place.translated(0, y + (rowHeight - place.height()) / 2 - place.y()));
        }
        row.clear();
    };
    for (QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const int width = std::max(item->minimumSize().width(),
                                   std::min(item->sizeHint().width(), area.width()));
        const int height = item->sizeHint().height();
        if (x > area.x() && x + width > area.x() + area.width()) {
            endRow();
            x = area.x();
            y += rowHeight + spacing();
            rowHeight = 0;
        }
        if (what == Do::Place)
            item->setGeometry({x, y, width, height});
        row.append(item);
        x += width + spacing();
        rowHeight = std::max(rowHeight, height);
    }
    endRow();
    return y + rowHeight - area.y();
}
