#include "Ossa/Painting/EveryMove.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

namespace {

constexpr Qt::ApplicationAttribute compress = Qt::AA_CompressHighFrequencyEvents;
int scopes = 0;
bool usual = true;

} // namespace

EveryMove::EveryMove()
{
    if (scopes++ > 0)
        return;
    usual = QCoreApplication::testAttribute(compress);
    QCoreApplication::setAttribute(compress, false);
}

EveryMove::~EveryMove()
{
    if (--scopes == 0)
        QCoreApplication::setAttribute(compress, usual);
}

EveryMoveOver::EveryMoveOver(QWidget *canvas)
{
    canvas->installEventFilter(this);
}

void EveryMoveOver::setWanted(bool wanted)
{
    m_isWanted = wanted;
    hold(wanted);
}

bool EveryMoveOver::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::Enter || event->type() == QEvent::Show)
        hold(m_isWanted);
    else if (event->type() == QEvent::Leave || event->type() == QEvent::Hide)
        hold(false);
    return false;
}

void EveryMoveOver::hold(bool on)
{
    if (on && !m_moves)
        m_moves = std::make_unique<EveryMove>();
    else if (!on)
        m_moves.reset();
}
