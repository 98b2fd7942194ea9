#include "Ossa/Palettes/LogModel.h"

#include "Ossa/Common/Theme.h"

#include <QColor>

namespace {

constexpr int batchInterval = 50; // ms

QString fullText(const OssDebugLog::Line &line)
{
    const QString place = QStringLiteral("%1:%2  ").arg(line.source).arg(line.number);
    return line.title.isEmpty() ? place + line.shown
                                : place + line.title + QLatin1Char('\n') + line.shown;
}

// Rows are one line high; dumps run over many.
QString rowText(const OssDebugLog::Line &line)
{
    QString text = line.title.isEmpty() ? line.shown
                                        : line.title + QStringLiteral(": ") + line.shown;
    text.truncate(400);
    text.replace(QLatin1Char('\n'), QStringLiteral(" \u21b5 "));
    return text;
}

} // namespace

LogModel::LogModel(QObject *parent)
    : QAbstractListModel(parent)
    , m_lines(OssDebugLog::instance()->lines())
{
    qRegisterMetaType<OssDebugLog::Line>("OssDebugLog::Line");
    m_timer.setSingleShot(true);
    m_timer.setInterval(batchInterval);
    connect(&m_timer, &QTimer::timeout, this, &LogModel::enterPending);
    connect(OssDebugLog::instance(), &OssDebugLog::lineAdded, this,
            [this](const OssDebugLog::Line &line) {
                m_pending.append(line);
                if (!m_timer.isActive())
                    m_timer.start();
            });
}

int LogModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_lines.size();
}

QVariant LogModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_lines.size())
        return {};
    const OssDebugLog::Line &line = m_lines.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return rowText(line);
    case Qt::ToolTipRole:
    case FullTextRole:
        return fullText(line);
    case Qt::ForegroundRole:
        if (line.category == OssDebugLog::Warning)
            return Theme::warningText();
        return line.category == OssDebugLog::Information ? Theme::mutedText() : QVariant();
    case CategoryRole:
        return line.category;
    default:
        return {};
    }
}

void LogModel::clear()
{
    OssDebugLog::instance()->clear();
    beginResetModel();
    m_pending.clear();
    m_lines.clear();
    endResetModel();
}

void LogModel::enterPending()
{
    const int surplus = m_lines.size() + m_pending.size() - OssDebugLog::Capacity;
    if (surplus >= m_lines.size()) {
        beginResetModel();
        m_lines = m_pending.mid(qMax(0, m_pending.size() - OssDebugLog::Capacity));
        m_pending.clear();
        endResetModel();
        return;
    }
    if (surplus > 0) {
        beginRemoveRows({}, 0, surplus - 1);
        m_lines.remove(0, surplus);
        endRemoveRows();
    }
    beginInsertRows({}, m_lines.size(), m_lines.size() + m_pending.size() - 1);
    m_lines += m_pending;
    m_pending.clear();
    endInsertRows();
}
