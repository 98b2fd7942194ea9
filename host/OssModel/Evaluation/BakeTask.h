#pragma once

#include "OssModel/Evaluation/BakePointBake.h"
#include "OssModel/Evaluation/OssNodeBake.h"

struct OssBakeReport;

/// What the bake manager has computed beside other work: a bake point's pixels, or those that are baked
/// for somebody else. GUI thread.
class BakeTask
{
public:
    virtual ~BakeTask() = default;

    /// What is to be baked.
    virtual const OssSnBaseNode *node() const = 0;
    /// Whether it is in its network still.
    bool isThere() const;

    /// Has the files that feed it looked at. Handles events.
    virtual void knowFiles(const std::function<bool()> &goesOn) const = 0;
    /// What needs no bake gets what it should have, and the report says so.
    virtual bool isWanted(OssBakeReport *report) const = 0;
    /// Copies out of the document what is computed. May handle events.
    virtual OssResult prepare() = 0;
    /// Whether a bake now would compute the same.
    virtual bool isCurrent() const = 0;
    /// As one step, of which the report then says.
    virtual OssResult take(OssBakeReport *report) = 0;
    /// Its failure in words that name it, once problems tell of it.
    virtual OssResult tell(const OssResult &baked) const = 0;
    virtual OssEvaluationService::PixelBakes &pixels() = 0;
};

class BakePointTask : public BakeTask
{
public:
    BakePointTask(OssSnBakePointNode *node, const BakeChoice &choice);

    const OssSnBaseNode *node() const override;
    void knowFiles(const std::function<bool()> &goesOn) const override;
    bool isWanted(OssBakeReport *report) const override;
    OssResult prepare() override;
    bool isCurrent() const override;
    OssResult take(OssBakeReport *report) override;
    OssResult tell(const OssResult &baked) const override;

    OssEvaluationService::PixelBakes &pixels() override { return m_bake.pixels; }

private:
    QPointer<OssSnBakePointNode> m_node;
    BakeChoice m_choice;
    BakePointBake m_bake;
};

class NodeBakeTask : public BakeTask
{
public:
    explicit NodeBakeTask(OssNodeBake bake);

    const OssSnBaseNode *node() const override;
    void knowFiles(const std::function<bool()> &goesOn) const override;
    bool isWanted(OssBakeReport *report) const override;
    OssResult prepare() override;
    bool isCurrent() const override;
    OssResult take(OssBakeReport *report) override;
    OssResult tell(const OssResult &baked) const override;

    OssEvaluationService::PixelBakes &pixels() override { return m_pixels; }

private:
    OssNodeBake m_bake;
    OssEvaluationService::PixelBakes m_pixels;
    QString m_key;
    QList<int> m_patches;
};
