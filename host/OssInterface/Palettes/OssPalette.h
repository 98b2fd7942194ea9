#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QPointer>
#include <QString>
#include <QWidget>

/// A panel of the main window: a frame around one body widget that the user docks, floats, closes
/// and opens. Found by its object name. Made without a parent and given to OssPaletteManager,
/// which owns it from then on.
class OSSINTERFACE_EXPORT OssPalette : public QWidget
{
    Q_OBJECT

public:
    explicit OssPalette(QWidget *parent = nullptr);

    /// Takes the body over; it dies with the palette. One that was there before is let go of,
    /// hidden and without a parent.
    void setBodyWidget(QWidget *body);

    /// The body; null when none was set or it has died.
    QWidget *originalWidget() const { return m_body; }

    void setContextHelpKey(const QString &key) { m_contextHelpKey = key; }

    QString contextHelpKey() const { return m_contextHelpKey; }

    /// What layouts and commands know the palette by, whatever language its title and object name
    /// are in: its help key as words, "Node Graph" for "node_graph_palette". Without a help key the
    /// object name.
    QString identity() const;

    /// Makes the palette visible wherever it is docked, in front of what shares its place.
    void showBySidebar();

    /// The same: a palette cannot be raised without its dock.
    void raise() { showBySidebar(); }

    /// Also asks for the dock to be opened.
    void setVisible(bool visible) override;

Q_SIGNALS:
    /// To whoever docks palettes.
    void showRequested();

private:
    QPointer<QWidget> m_body;
    QString m_contextHelpKey;
    bool m_requesting = false;
};
