#pragma once

#include "OssModel/Export/OssExportPlan.h"

#include <QAbstractTableModel>
#include <QHash>

class OssExportJob;

/// The files that an export writes: name, what is in them, in which form, and what became of them.
class ExportFilesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Content, Size, Bits, Space, Bytes, State, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void setPlan(const OssExportPlan &plan);
    /// What the job says of the files that the model has; null: nothing is said.
    void tellStates(const OssExportJob *job);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// "12.5 MB"
    static QString bytesText(qint64 bytes);

private:
    QString text(const OssExportFile &file, int column) const;

    OssExportPlan m_plan;
    QHash<QString, QString> m_states; ///< by path
};
