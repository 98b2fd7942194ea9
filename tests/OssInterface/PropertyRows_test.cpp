#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "PropertiesFixture.h"

#include <QApplication>

namespace {

/// Where the rows of a panel stand.
class PropertyRows : public PropertiesFixture
{};

TEST_F(PropertyRows, fieldsStayInLineWhenThePanelIsStyledAnew)
{
    qApp->setStyleSheet(text("QLabel { color: red; }"));
    open({});
    OssFormLayout::alignLabels(m_panel.get());
    QCoreApplication::processEvents();
    const auto left = [this](const char *name) {
        return row(name)->editor()->mapTo(m_panel.get(), QPoint()).x();
    };
    const int before = left("Tint");
    auto *section = m_panel->findChild<OssExpandableListWidget *>();
    for (const char *color : {"red", "blue"}) {
        section->collapse();
        m_panel->setStyleSheet(text("QFrame#panel { border-color: %1; }").arg(text(color)));
        QCoreApplication::processEvents();
        EXPECT_EQ(left("Line"), before);
        section->expand();
        QCoreApplication::processEvents();
        EXPECT_EQ(left("Tint"), before);
    }
    qApp->setStyleSheet(QString());
}

} // namespace
