#pragma once

#include <QObject>

namespace ads {
class CDockAreaWidget;
class CDockWidgetTab;
} // namespace ads

/// Keeps the tabs of one dock area readable: where their names have no room beside each other, that of the
/// palette in front is shown alone and whole, and the others by their icons. The one in front stays in sight
/// when even these have no room. Belongs to the area.
class PaletteTabs : public QObject
{
    Q_OBJECT

public:
    explicit PaletteTabs(ads::CDockAreaWidget *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitSoon();
    void fit();
    int room() const;
    static void showName(const ads::CDockWidgetTab *tab, bool shown, bool whole);

    ads::CDockAreaWidget *m_area;
    bool m_isFitting = false; ///< asked for, and not done yet
};
