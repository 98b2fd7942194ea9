#pragma once

#include <QObject>

/// Closes every modal dialog and menu as soon as it opens, and logs what it wanted to say. For runs
/// without a user, where a box would wait for ever.
class OssPopupGuard : public QObject
{
    Q_OBJECT

public:
    explicit OssPopupGuard(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
};
