#pragma once

#include "support/Text.h"

#include <QObject>

/// An object with preferences of every kind that the dialog has an editor for.
class PreferencesTestObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool flag MEMBER flag)
    Q_PROPERTY(int count MEMBER count)
    Q_PROPERTY(double ratio MEMBER ratio)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QString mode MEMBER mode)
    Q_PROPERTY(Anchor anchor MEMBER anchor)

public:
    /// Any int may be stored in it.
    enum Anchor : int { Center = 0, Cursor = 1 };
    Q_ENUM(Anchor)

    bool flag = true;
    int count = 4;
    double ratio = 0.5;
    QString note = text("text");
    QString mode = text("Prompt");
    Anchor anchor = Cursor;
    int saves = 0;

public Q_SLOTS:

    QStringList modeList() const { return texts({"Prompt", "Change", "Leave"}); }

    QString flagTooltip() const { return text("What the flag does"); }

    double ratioDefault() const { return 0.5; }

    void resetFlag() { flag = true; }

    void resetCount() { count = 4; }

    void savePreferences() { ++saves; }
};
