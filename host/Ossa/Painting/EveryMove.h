#pragma once

#include <QObject>

#include <memory>

class QWidget;

/// Lets all moves of the pointer through while it lives, also those that come faster than they are
/// handled: they shape a stroke. Several may overlap. GUI thread.
class EveryMove
{
public:
    EveryMove();
    EveryMove(const EveryMove &) = delete;
    EveryMove &operator=(const EveryMove &) = delete;
    ~EveryMove();
};

/// The same while there may be a stroke on a canvas, for what waits behind a press that is not handled
/// yet would be lost: from when strokes are wanted until the pointer leaves, and when it comes again.
class EveryMoveOver : public QObject
{
public:
    explicit EveryMoveOver(QWidget *canvas);

    void setWanted(bool wanted);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void hold(bool on);

    bool m_isWanted = false;
    std::unique_ptr<EveryMove> m_moves;
};
