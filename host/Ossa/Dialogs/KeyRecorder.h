#pragma once

#include <QKeySequence>
#include <QLineEdit>

/// A field that takes the next key combination that is pressed in it, Tab and Enter included.
/// Escape without modifiers empties it.
class KeyRecorder : public QLineEdit
{
    Q_OBJECT

public:
    explicit KeyRecorder(QWidget *parent = nullptr);

    QKeySequence keys() const { return m_keys; }

    void setKeys(const QKeySequence &keys);

Q_SIGNALS:
    void keysChanged(const QKeySequence &keys);

protected:
    bool event(QEvent *event) override;

private:
    QKeySequence m_keys;
};
