#include "OssInterface/Palettes/OssPalette.h"

#include "OssInterface/Actions/OssTabOrder.h"

#include <QScopedValueRollback>
#include <QStringList>
#include <QVBoxLayout>

OssPalette::OssPalette(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void OssPalette::setBodyWidget(QWidget *body)
{
    if (m_body == body)
        return;
    if (m_body) {
        layout()->removeWidget(m_body);
        m_body->hide();
        m_body->setParent(nullptr);
    }
    m_body = body;
    if (!body)
        return;
    OssTabOrder::followLayout(body);
    layout()->addWidget(body);
    setFocusProxy(body);
}

QString OssPalette::identity() const
{
    QStringList words = m_contextHelpKey.split(QLatin1Char('_'), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return objectName();
    if (words.size() > 1 && words.last() == QLatin1String("palette"))
        words.removeLast();
    for (QString &word : words)
        word[0] = word.at(0).toUpper();
    return words.join(QLatin1Char(' '));
}

void OssPalette::showBySidebar()
{
    setVisible(true);
    if (isWindow())
        QWidget::raise();
}

void OssPalette::setVisible(bool visible)
{
    // Whoever docks the palette may show it in turn.
    const bool request = visible && !m_requesting;
    const QScopedValueRollback<bool> guard(m_requesting, true);
    // Inside a dock that is closed, showing the palette alone would show nothing.
    if (request && parentWidget())
        Q_EMIT showRequested();
    QWidget::setVisible(visible);
}
