#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Files/OssEvFileColors.h"
#include "OssModel/OssModel_export.h"

#include <QObject>
#include <QStringList>

#include <mutex>

/// What colours are in a project, as it is saved.
struct OSSMODEL_EXPORT OssColorSettings
{
    /// The environment's configuration.
    static const QString Environment;

    /// Path of an OpenColorIO configuration, relative as OssFilePath has it, or Environment; empty for
    /// the built-in one.
    QString config;
    /// Empty for the configuration's own choice.
    QString working;
    /// One "PATTERN=SPACE" for each rule of OssEvFileColors.
    QStringList fileRules;

    /// The rules that new projects have.
    static QStringList usualFileRules();

    OssEvFileColors::Rules rules() const;
    /// For people.
    static QString configTitle(const QString &config);

    friend bool operator==(const OssColorSettings &a, const OssColorSettings &b)
    {
        return a.config == b.config && a.working == b.working && a.fileRules == b.fileRules;
    }

    friend bool operator!=(const OssColorSettings &a, const OssColorSettings &b)
    {
        return !(a == b);
    }
};

/// The colour spaces in which everything is computed and shown: those of the open project. Where its
/// configuration cannot be had, the built-in one stands in, which problem() tells; the project keeps its
/// choice. GUI thread, but for what says otherwise.
class OSSMODEL_EXPORT OssColorManagement
    : public QObject
    , public OssService<OssColorManagement>
{
    Q_OBJECT

public:
    OssColorManagement();
    ~OssColorManagement() override;

    /// Never null. Any thread; the built-in ones before the services are there.
    static OssEvColorSpaces::Pointer spaces();
    /// How files are understood.
    OssEvFileColors fileColors() const;

    /// Other spaces, other text; empty for the built-in working space. For keys that are saved.
    QString key() const { return m_key; }

    /// Why something stands in for what the project asks for; empty when nothing does.
    QString problem() const { return m_problem; }

    const OssColorSettings &settings() const { return m_settings; }

    /// Of the project that is open now. Reads the configuration anew.
    void use(const OssColorSettings &settings);

    /// What the settings ask for. Fails, naming file and reason, where that cannot be had; `spaces` is
    /// what stands in then.
    static OssResult find(const OssColorSettings &settings, OssEvColorSpaces::Pointer *spaces);

Q_SIGNALS:
    /// Other spaces, other rules or another problem.
    void changed();

private:
    mutable std::mutex m_mutex;
    OssEvColorSpaces::Pointer m_spaces; ///< guarded
    OssColorSettings m_settings;
    QString m_key;
    QString m_problem;
};
