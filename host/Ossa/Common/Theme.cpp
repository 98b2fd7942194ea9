#include "Ossa/Common/Theme.h"

#include "OssCore/Program/OssResourceInfo.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>

namespace {

struct Named
{
    const char *name;
    const char *value;
};

// Longer names first: names are replaced one after the other.
const Named colors[] = {
    {"@fieldBorder", "#34383f"}, {"@field", "#15161a"},    {"@window", "#17181b"},
    {"@bar", "#202226"},         {"@panel", "#1f2125"},    {"@line", "#2c2f35"},
    {"@raisedHover", "#343840"}, {"@raised", "#2a2d33"},   {"@text", "#d7dae0"},
    {"@muted", "#9aa3af"},       {"@disabled", "#5c626c"}, {"@accentDeep", "#2b4a6f"},
    {"@accent", "#5aa9ff"},      {"@warning", "#e5868a"},
};

QColor color(const char *name)
{
    for (const Named &row : colors) {
        if (qstrcmp(row.name, name) == 0)
            return QColor(QLatin1String(row.value));
    }
    return {};
}

// clang-format off
const char *const styleSheet = R"(
QMainWindow, ads--CDockManager, ads--CDockContainerWidget { background: @window; }
QDialog { background: @panel; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QToolTip { background: @raised; color: @text; border: 1px solid @fieldBorder; padding: 4px 6px; }

QMenuBar { background: @bar; padding: 2px 6px; border: 0; }
QMenuBar::item { padding: 5px 10px; border-radius: 5px; background: transparent; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: @raised; }
QMenu { background: @bar; border: 1px solid @fieldBorder; padding: 5px; menu-scrollable: 1; }
QMenu::item { padding: 5px 28px 5px 26px; border-radius: 4px; }
QMenu::item:selected { background: @accentDeep; }
QMenu::item:disabled { color: @disabled; background: transparent; }
QMenu::separator { height: 1px; background: @line; margin: 5px 8px; }
QMenu::icon { padding-left: 6px; }
QMenu::right-arrow { image: url("@icons/Right.png"); width: 10px; height: 10px; right: 10px; }
QMenu::indicator { width: 14px; height: 14px; left: 7px; }
QMenu::indicator:checked { image: url("@icons/Check.png"); }

QStatusBar { background: @bar; color: @muted; }
QStatusBar::item { border: 0; }

QLineEdit, QAbstractSpinBox, QComboBox, QTextEdit, QPlainTextEdit {
    background: @field; border: 1px solid @fieldBorder; border-radius: 4px; padding: 3px 6px;
    selection-background-color: @accentDeep; selection-color: @text; min-height: 18px;
}
QLineEdit:focus, QAbstractSpinBox:focus, QComboBox:focus, QTextEdit:focus, QPlainTextEdit:focus {
    border-color: @accent;
}
QLineEdit:disabled, QAbstractSpinBox:disabled, QComboBox:disabled { color: @disabled; }
QAbstractSpinBox::up-button, QAbstractSpinBox::down-button { width: 0; border: 0; }
QComboBox::drop-down { border: 0; width: 20px; }
QComboBox::down-arrow { image: url("@icons/Down.png"); width: 10px; height: 10px; }
QComboBox QAbstractItemView { background: @bar; border: 1px solid @fieldBorder; padding: 4px; }

QPushButton {
    background: @raised; border: 1px solid @fieldBorder; border-radius: 4px; padding: 4px 12px;
}
QPushButton:hover { background: @raisedHover; }
QPushButton:pressed { background: @field; }
QPushButton:focus { border-color: @accent; }
QPushButton:default { border-color: @accent; }
QPushButton:checked { background: @accentDeep; border-color: @accentDeep; }
QPushButton:checked:focus { border-color: @accent; }
QPushButton:disabled { color: @disabled; background: @panel; }
OssMiniButton { padding: 0 4px; border-radius: 3px; }
QToolButton {
    background: transparent; border: 1px solid transparent; border-radius: 4px; padding: 3px;
}
QToolButton[popupMode="2"] { padding-right: 17px; }
QToolButton::menu-indicator {
    image: url("@icons/Down.png"); width: 10px; height: 10px;
    subcontrol-origin: padding; subcontrol-position: center right; right: 4px;
}
QToolButton:hover { background: @raisedHover; }
QToolButton:focus { border-color: @accent; }
QToolButton:checked { background: @accentDeep; color: @text; }
QToolButton[popupMode="2"] { padding-right: 17px; }
QToolButton::menu-indicator {
    image: url("@icons/Down.png"); width: 9px; height: 9px;
    subcontrol-origin: border; subcontrol-position: center right; right: 5px;
}

QCheckBox::indicator {
    width: 14px; height: 14px;
    background: @field; border: 1px solid @fieldBorder; border-radius: 3px;
}
QCheckBox::indicator:hover { border-color: @muted; }
QCheckBox::indicator:focus { border-color: @accent; }
QCheckBox::indicator:checked {
    background: @accentDeep; border-color: @accent; image: url("@icons/Check.png");
}

QAbstractItemView {
    background: @field; border: 1px solid @line; border-radius: 4px; outline: 0;
    selection-background-color: @accentDeep; selection-color: @text;
}
QAbstractItemView::item { padding: 3px 4px; border: 0; }
QAbstractItemView::item:hover { background: @raised; }
QAbstractItemView::item:selected { background: @accentDeep; color: @text; }
QAbstractItemView::item:selected:disabled { background: @raised; color: @disabled; }
QHeaderView { background: @panel; border: 0; }
QHeaderView::section {
    background: @panel; color: @muted; border: 0; border-bottom: 1px solid @line; padding: 5px 8px;
}

QScrollBar:vertical { background: transparent; width: 11px; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 11px; margin: 0; }
QScrollBar::handle { background: @fieldBorder; border-radius: 4px; margin: 2px; }
QScrollBar::handle:vertical { min-height: 28px; }
QScrollBar::handle:horizontal { min-width: 28px; }
QScrollBar::handle:hover { background: @disabled; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QAbstractScrollArea::corner { background: transparent; }

QSlider::groove:horizontal { height: 4px; background: @field; border-radius: 2px; }
QSlider::sub-page:horizontal { background: @accent; border-radius: 2px; }
QSlider::handle:horizontal {
    width: 12px; height: 12px; margin: -4px 0; border-radius: 6px; background: @text;
}
QProgressBar { background: @field; border: 0; border-radius: 3px; height: 6px; max-height: 6px; }
QProgressBar::chunk { background: @accent; border-radius: 3px; }

QGroupBox { border: 0; border-top: 1px solid @line; margin-top: 22px; padding-top: 8px; }
QGroupBox::title {
    subcontrol-origin: margin; left: 0;
    color: @muted; font-weight: 600; padding: 2px 8px 2px 0;
}

QTabBar { background: transparent; }
QTabBar::tab {
    background: @panel; color: @muted;
    border-radius: 5px; padding: 5px 12px; margin: 3px 3px 3px 0;
}
QTabBar::tab:selected { background: @raised; color: @text; }
QTabBar::tab:hover:!selected { background: @raised; }
QTabBar::close-button { image: url("@icons/Close.png"); width: 12px; height: 12px; margin: 2px; }
QTabBar::close-button:hover { background: @line; border-radius: 3px; }
QTabBar QToolButton { background: @raised; border: 1px solid @fieldBorder; padding: 0; }
QTabBar QToolButton:hover { background: @raisedHover; }
QTabBar QToolButton:disabled { background: @panel; }
QTabBar QToolButton::left-arrow { image: url("@icons/Left.png"); width: 12px; height: 12px; }
QTabBar QToolButton::right-arrow { image: url("@icons/Right.png"); width: 12px; height: 12px; }
QTabBar QToolButton::left-arrow:disabled { image: url("@icons/LeftDisabled.png"); }
QTabBar QToolButton::right-arrow:disabled { image: url("@icons/RightDisabled.png"); }
QTabWidget::pane { border: 0; }

OssPalette { background: @panel; }
ads--CDockAreaWidget {
    background: @panel; border: 1px solid @line; border-radius: 8px; margin: 3px;
}
ads--CDockAreaTitleBar {
    background: transparent; border-bottom: 1px solid @line; padding: 2px 4px 0 6px;
}
ads--CDockWidget { background: @panel; border: 0; }
ads--CDockWidgetTab { background: transparent; border: 0; padding: 4px 2px; min-height: 20px; }
ads--CDockWidgetTab QLabel { color: @muted; font-weight: 600; }
ads--CDockWidgetTab[activeTab="true"] QLabel { color: @text; }
ads--CDockWidgetTab[focused="true"] QLabel { color: @accent; }
ads--CTitleBarButton, #tabsMenuButton, #detachGroupButton, #dockAreaCloseButton { padding: 2px; }
ads--CDockSplitter { background: @window; padding: 0; }
ads--CDockManager { padding: 2px 3px 0 3px; }
ads--CDockSplitter::handle { background: @window; }
ads--CDockSplitter::handle:hover { background: @accentDeep; }
ads--CFloatingDockContainer { background: @window; }

#NotificationBar { background: #3a2426; border-bottom: 1px solid #5b3034; }
#NotificationBar QLabel { color: #f0c4c6; }
#CommandPalette { border: 1px solid @fieldBorder; }
#Muted { color: @muted; }
#Mode { background: @accentDeep; color: @text; border-radius: 3px; padding: 1px 8px; }
#Warning { color: @warning; }
)";

// clang-format on

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, color("@panel"));
    palette.setColor(QPalette::WindowText, color("@text"));
    palette.setColor(QPalette::Base, color("@field"));
    palette.setColor(QPalette::AlternateBase, color("@panel"));
    palette.setColor(QPalette::Text, color("@text"));
    palette.setColor(QPalette::PlaceholderText, color("@muted"));
    palette.setColor(QPalette::Button, color("@raised"));
    palette.setColor(QPalette::ButtonText, color("@text"));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, color("@raised"));
    palette.setColor(QPalette::ToolTipText, color("@text"));
    palette.setColor(QPalette::Highlight, color("@accentDeep"));
    palette.setColor(QPalette::HighlightedText, color("@text"));
    palette.setColor(QPalette::Link, color("@accent"));
    palette.setColor(QPalette::Light, color("@raisedHover"));
    palette.setColor(QPalette::Midlight, color("@raised"));
    palette.setColor(QPalette::Mid, color("@line"));
    palette.setColor(QPalette::Dark, color("@window"));
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, color("@disabled"));
    return palette;
}

} // namespace

void Theme::apply()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(darkPalette());
    QFont font(QStringLiteral("Inter"));
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(9.0); // 12 units at 96 dots per inch
    QApplication::setFont(font);

    QString sheet = QString::fromUtf8(styleSheet);
    for (const Named &row : colors)
        sheet.replace(QLatin1String(row.name), QLatin1String(row.value));
    sheet.replace(QLatin1String("@icons"), OssResourceInfo::instance()->iconPath());
    qApp->setStyleSheet(sheet);
}

QSize Theme::fitting(const QSize &size)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? size.boundedTo(screen->availableSize() * 0.95) : size;
}

QColor Theme::mutedText()
{
    return color("@muted");
}

QColor Theme::warningText()
{
    return color("@warning");
}
