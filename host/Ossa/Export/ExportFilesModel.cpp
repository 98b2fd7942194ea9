#include "Ossa/Export/ExportFilesModel.h"

#include "OssModel/Export/OssExportJob.h"

#include <QDir>
#include <QLocale>

void ExportFilesModel::setPlan(const OssExportPlan &plan)
{
    beginResetModel();
    m_plan = plan;
    m_states.clear();
    endResetModel();
}

void ExportFilesModel::tellStates(const OssExportJob *job)
{
    QHash<QString, QString> states;
    if (job) {
        const OssExportJob::Keys keys = job->keys();
        for (auto at = keys.cbegin(); at != keys.cend(); ++at)
            states.insert(at.key(), tr("unchanged"));
        const QStringList written = job->written();
        for (const QString &path : written)
            states.insert(path, tr("written"));
        const QStringList failed = job->failedFiles();
        for (const QString &path : failed)
            states.insert(path, tr("failed"));
        if (job->isRunning())
            states.insert(job->currentFile(), tr("writing"));
    }
    if (states == m_states)
        return;
    m_states = states;
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, State), index(rowCount() - 1, State));
}

int ExportFilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_plan.files.size();
}

int ExportFilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant ExportFilesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_plan.files.size())
        return {};
    const OssExportFile &file = m_plan.files.at(index.row());
    if (role == Qt::DisplayRole)
        return text(file, index.column());
    if (role == Qt::ToolTipRole)
        return index.column() == Name ? QDir::toNativeSeparators(file.path)
                                      : text(file, index.column());
    if (role == Qt::TextAlignmentRole && (index.column() == Size || index.column() == Bytes))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QString ExportFilesModel::text(const OssExportFile &file, int column) const
{
    switch (column) {
    case Name:
        return QDir(m_plan.options.folder).relativeFilePath(file.path);
    case Content:
        return file.contentText();
    case Size:
        return QString::number(file.resolution);
    case Bits:
        return file.depthText();
    case Space:
        return file.spaceText();
    case Bytes:
        return bytesText(file.bytes());
    case State:
        return m_states.value(file.path);
    default:
        return {};
    }
}

QVariant ExportFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList names{tr("File"),  tr("Channels"), tr("Size"), tr("Bits"),
                            tr("Space"), tr("Unpacked"), tr("State")};
    return names.value(section);
}

QString ExportFilesModel::bytesText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}
