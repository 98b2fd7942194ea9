#pragma once

#include "OssModel/Objects/OssGeometrySource.h"

#include <QObject>
#include <QString>

#include <memory>

/// Reads one mesh file on a thread of its own, for those who want to see what is in it before an object
/// is made of it. GUI thread.
class OSSMODEL_EXPORT OssMeshReader : public QObject
{
    Q_OBJECT

public:
    explicit OssMeshReader(QObject *parent = nullptr);
    /// Stops reading; nobody is told.
    ~OssMeshReader() override;

    /// Begins; what was being read is given up.
    void start(const OssGeometrySource &source);
    void cancel();
    /// Handles events, but no input, until it is done.
    void wait();

    bool isRunning() const;

    const OssGeometrySource &source() const { return m_source; }

    /// Of what was read last; with parts where problem() is empty.
    const OssEvMeshFile::Reading &reading() const { return m_reading; }

    /// Why the file could not be read, with its name; empty when it could.
    QString problem() const { return m_problem; }

    /// What OssFileWatch said of the file before it was read.
    QString content() const { return m_content; }

Q_SIGNALS:
    void progressed(int thousandths);
    void finished();

private:
    struct Work;

    OssGeometrySource m_source;
    OssEvMeshFile::Reading m_reading;
    QString m_problem;
    QString m_content;
    std::shared_ptr<Work> m_work; ///< null when nothing is being read
};
