#pragma once

#include "Ossa/Export/WorkProgress.h"

/// How far bakes in the background are; hidden while none runs.
class BakeProgress : public WorkProgress
{
    Q_OBJECT

public:
    explicit BakeProgress(QWidget *parent = nullptr);

private:
    void refresh();
};
