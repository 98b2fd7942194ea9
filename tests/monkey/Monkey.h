#pragma once

#include "MonkeyHands.h"
#include "PointerDiary.h"

#include <QEventLoop>
#include <QStringList>
#include <QTemporaryDir>

/// One program and the hands that use it: keeps a copy of an example open and looks, while it is
/// used, whether what must hold does.
class Monkey : public QObject
{
    Q_OBJECT

public:
    Monkey(quint32 seed, const QString &example);
    ~Monkey() override;

    /// So many events; then everything is let go of, and the whole history is walked back and forth.
    /// The test fails, with the seed and the event, on the first thing that does not hold.
    void play(int events);

private:
    void next();
    void finish();
    void open();
    void look();
    void lookAtHistory();
    void expect(const QStringList &broken);
    QString where() const;

    const quint32 m_seed;
    const QString m_example;
    QTemporaryDir m_folder;
    MonkeyHands m_hands;
    PointerDiary m_diary;
    QEventLoop m_loop;
    QStringList m_recent; ///< what was done last
    int m_left = 0;
    int m_done = 0;
    int m_depth = 0; ///< loops inside of each other: menus, dialogs, drags
    int m_letGo = 0; ///< tries to come to an end
    int m_quiet = 0; ///< of those, the last ones that found nothing to let go of
    int m_idle = 0;  ///< events since something of the user's was in hand
    bool m_failed = false;
};
