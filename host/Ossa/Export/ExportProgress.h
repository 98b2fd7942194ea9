#pragma once

#include "Ossa/Export/WorkProgress.h"

/// How far the running export is; hidden while none runs. The status bar has one, and the palette.
class ExportProgress : public WorkProgress
{
    Q_OBJECT

public:
    explicit ExportProgress(QWidget *parent = nullptr);

private:
    void follow();
    void refresh();
};
