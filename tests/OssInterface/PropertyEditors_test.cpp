#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorPicker.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Images/OssImage.h"
#include "PropertiesFixture.h"
#include "support/DialogAnswers.h"
#include "support/OssaFiles.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QImage>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>

namespace {

/// Knows its pixels better than the screen.
class PixelsOfItsOwn : public QWidget
{
    Q_OBJECT

public:
    Q_INVOKABLE static QVariant sceneColorAt(const QPoint &place)
    {
        return QVariant::fromValue(OssColor(place.x(), -1, 0.5));
    }
};

/// The editors of single attributes, in a panel.
class PropertyEditors : public PropertiesFixture
{
protected:
    /// Drops it on the list of pictures; whether it was taken.
    bool dropOnPictures(const QMimeData &mime) const
    {
        QWidget *target = row("Pictures")->editor();
        const bool takes = dragOver(target, mime);
        dropOn(target, mime);
        return takes;
    }

    OssColorPicker *openTint()
    {
        QTest::keyClick(editor<QPushButton>("Tint"), Qt::Key_Space);
        return m_panel->findChild<OssColorPicker *>();
    }

    static void deleteLater()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static OssNumberField *named(const QWidget *picker, const char *name)
    {
        const auto fields = picker->findChildren<OssNumberField *>();
        const auto found = std::find_if(fields.begin(), fields.end(), [name](const auto *field) {
            return field->accessibleName() == text(name);
        });
        return found == fields.end() ? nullptr : *found;
    }

    OssColor tint() const { return value("Tint").value<OssColor>(); }
};

OssCustomAttribute attribute(const char *editor, const QVariant &value)
{
    OssCustomAttribute made(text("Value"), value);
    made.editDefinition().editor = text(editor);
    return made;
}

/// An editor by itself, and what it says that the user wants.
template <class Widget>
class Alone
{
public:
    explicit Alone(const char *kind)
        : editor(OssPropertyEditor::create(attribute(kind, QString()), nullptr))
        , widget(editor->findChild<Widget *>())
        , m_kind(kind)
        , m_edited(editor.get(), &OssPropertyEditor::edited)
    {
        editor->show();
    }

    void show(const QString &value, bool mixed = false)
    {
        editor->showValue(attribute(m_kind, value), OssMixed(mixed));
    }

    /// Since the last call.
    QStringList edits()
    {
        QStringList all;
        while (!m_edited.isEmpty())
            all.append(m_edited.takeFirst().first().toString());
        return all;
    }

    const std::unique_ptr<OssPropertyEditor> editor;
    Widget *const widget;

private:
    const char *m_kind;
    QSignalSpy m_edited;
};

} // namespace

TEST_F(PropertyEditors, everyKindOfAttributeHasAnEditor)
{
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        const OssCustomAttribute one = attribute(
            kind.name.data(), OssAttributeKind::empty(kind.form.type, texts({"A", "B"})));
        const std::unique_ptr<OssPropertyEditor> made(OssPropertyEditor::create(one, nullptr));
        EXPECT_TRUE(made->isEditable()) << kind.name.data();
        made->showValue(one, OssMixed());
    }
    const OssCustomAttribute unknown(text("Value"), QVariantList());
    const std::unique_ptr<OssPropertyEditor> shown(OssPropertyEditor::create(unknown, nullptr));
    EXPECT_FALSE(shown->isEditable());
}

TEST_F(PropertyEditors, everyEditorChangesItsValueInOneStep)
{
    QTest::keyClick(editor<QComboBox>("Mode"), Qt::Key_Down);
    EXPECT_EQ(value("Mode"), text("Mix"));
    QTest::mouseClick(editor<QCheckBox>("On"), Qt::LeftButton, {}, {6, 8});
    EXPECT_TRUE(value("On").toBool());
    type(field("Place", 1), "5");
    EXPECT_EQ(value("Place").toPointF(), QPointF(1, 5));
    type(field("Tint", 2), "x*2");
    EXPECT_EQ(value("Tint").value<OssColor>(), OssColor(0.25, 0.5, 4, 1));
    QTest::keyClicks(editor<QLineEdit>("Line"), text("word"));
    QTest::keyClick(editor<QLineEdit>("Line"), Qt::Key_Return);
    EXPECT_EQ(value("Line"), text("word"));
    auto *note = editor<QPlainTextEdit>("Note");
    QTest::keyClicks(note, text("a"));
    QTest::keyClick(note, Qt::Key_Return);
    QTest::keyClicks(note, text("b"));
    EXPECT_EQ(value("Note"), QString());
    QTest::keyClick(note, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(value("Note"), text("a\nb"));
    EXPECT_EQ(undoCount(), 6);

    auto *path = editor<QLineEdit>("Path");
    QTest::keyClicks(path, text("/no/such.exr"));
    QTest::keyClick(path, Qt::Key_Return);
    EXPECT_TRUE(path->toolTip().contains(text("/no/such.exr")));
    EXPECT_EQ(undoCount(), 7);
    expectUndoIsExact(m_start);
}

TEST_F(PropertyEditors, imagesAreChosenFromTheProjectsAndDroppedAsItsPaletteDragsThem)
{
    QStringList ids;
    for (const char *name : {"rust.png", "wood.png"})
        ids.append(m_project->addImage(text(name), {})->uniqueId().toString());
    auto *list = editor<QComboBox>("Pictures");
    ASSERT_NE(list, nullptr);
    QFocusEvent focus(QEvent::FocusIn);
    QCoreApplication::sendEvent(list, &focus);
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_EQ(value("Pictures"), QStringList{ids.last()});
    EXPECT_EQ(list->currentText(), text("wood.png"));
    QMimeData mime;
    mime.setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
    EXPECT_TRUE(dropOnPictures(mime));
    EXPECT_EQ(value("Pictures"), ids);
    EXPECT_EQ(list->currentText(), text("rust.png and 1 more"));
}

TEST_F(PropertyEditors, pictureFilesFromOutsideBecomeImagesOfTheProjectInOneStep)
{
    const QTemporaryDir folder;
    const QString moss = folder.filePath(text("moss.png"));
    ASSERT_TRUE(QImage(4, 4, QImage::Format_RGB32).save(moss));
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(folder.filePath(text("notes.txt")))});
    EXPECT_FALSE(dropOnPictures(mime));
    EXPECT_EQ(undoCount(), 0);
    mime.setUrls({QUrl::fromLocalFile(moss)});
    EXPECT_TRUE(dropOnPictures(mime));
    ASSERT_EQ(m_project->images().size(), 1);
    EXPECT_EQ(value("Pictures"), QStringList{m_project->images().first()->uniqueId().toString()});
    EXPECT_EQ(editor<QComboBox>("Pictures")->currentText(), text("moss.png"));
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(m_start);
}

TEST_F(PropertyEditors, thePickersColoursAreSeenAtOnceAndOneStep)
{
    OssColorPicker *picker = openTint();
    ASSERT_NE(picker, nullptr);
    EXPECT_FALSE(picker->isModal());
    EXPECT_EQ(openTint(), picker);
    auto *plane = picker->findChild<OssColorPlane *>();
    const auto at = [](const QRectF &area, double x, double y) {
        return QPoint(int(area.left() + x * area.width()), int(area.top() + y * area.height()));
    };
    QTest::mousePress(plane, Qt::LeftButton, {}, at(plane->hues(), 0.0, 0.5));
    QTest::mouseRelease(plane, Qt::LeftButton, {}, at(plane->hues(), 0.0, 0.5));
    QTest::mousePress(plane, Qt::LeftButton, {}, at(plane->square(), 0.5, 0.5));
    moveMouse(plane, plane->square().bottomRight().toPoint() + QPoint(50, -400), Qt::LeftButton);
    EXPECT_NEAR(tint().red(), 2.0, 1e-6) << "as bright as it was";
    EXPECT_NEAR(tint().green(), 0.0, 1e-3);
    QTest::mouseRelease(plane, Qt::LeftButton);
    type(named(picker, "Blue"), "-0.5");
    type(named(picker, "Brightness"), "4");
    EXPECT_NEAR(tint().red(), 4.0, 1e-6);
    EXPECT_NEAR(tint().blue(), -1.0, 1e-6);
    EXPECT_EQ(undoCount(), 1);
    m_node->setAttribute(text("Tint"), text("0.5,0.25,0.125,1")); // by somebody else
    EXPECT_EQ(picker->color(), OssColor(0.5, 0.25, 0.125));
    type(named(picker, "Red"), "1");
    EXPECT_EQ(undoCount(), 3);
    picker->close();
    EXPECT_EQ(tint().red(), 1.0) << "kept";
    deleteLater();
    EXPECT_EQ(m_panel->findChild<OssColorPicker *>(), nullptr);
    expectUndoIsExact(m_start);

    OssUndoManager::instance()->setIndex(0);
    picker = openTint();
    type(named(picker, "Red"), "9");
    QTest::keyClick(picker, Qt::Key_Escape);
    EXPECT_FALSE(OssUndoManager::instance()->canUndo()) << "as if nothing had been";
    EXPECT_EQ(tint(), OssColor(0.25, 0.5, 2));
    deleteLater();
    picker = openTint();
    type(named(picker, "Red"), "9");
    m_node->setAttribute(text("Amount"), 0.75);
    picker->reject();
    EXPECT_EQ(tint(), OssColor(0.25, 0.5, 2));
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    deleteLater();
    openTint();
    m_panel->setLocked(true);
    deleteLater();
    EXPECT_EQ(m_panel->findChild<OssColorPicker *>(), nullptr);
}

TEST_F(PropertyEditors, thePickerChangesOfSeveralNodesOnlyWhatItIsAskedTo)
{
    OssSnBaseNode *other = add("Test/Everything");
    other->setAttribute(text("Tint"), text("0.25,0.75,2,0.5"));
    const auto others = [other] {
        return other->attribute(text("Tint")).value<OssColor>();
    };
    m_node->setSelected(true);
    other->setSelected(true);
    QCoreApplication::processEvents();
    OssColorPicker *picker = openTint();
    EXPECT_NE(named(picker, "Red")->text(), text("mixed"));
    EXPECT_EQ(named(picker, "Green")->text(), text("mixed"));
    EXPECT_EQ(named(picker, "Brightness")->text(), text("mixed"));
    type(named(picker, "Red"), "9");
    EXPECT_EQ(others(), OssColor(9, 0.75, 2, 0.5));
    EXPECT_EQ(named(picker, "Green")->text(), text("mixed")) << "still";
    QTest::mouseClick(picker->findChildren<QPushButton *>().value(0), Qt::LeftButton);
    EXPECT_EQ(tint(), OssColor(0.25, 0.5, 2));
    EXPECT_EQ(others(), OssColor(0.25, 0.75, 2, 0.5)) << "back only in what was changed";
    drag(named(picker, "Alpha"), -30);
    EXPECT_EQ(named(picker, "Green")->text(), text("mixed")) << "also while something is dragged";
    release(named(picker, "Alpha"));
    EXPECT_EQ(others().alpha(), tint().alpha());
    EXPECT_EQ(others().green(), 0.75);
    type(named(picker, "Red"), "9");
    m_node->setAttribute(text("Amount"), 0.75);
    const double green = others().green();
    picker->reject();
    EXPECT_EQ(tint(), OssColor(0.25, 0.5, 2));
    EXPECT_EQ(others().green(), green);
}

TEST_F(PropertyEditors, escapeBesideThePickerClosesItAndKeepsItsColor)
{
    OssColorPicker *picker = openTint();
    type(named(picker, "Red"), "9");
    QTest::keyClick(m_panel->window(), Qt::Key_Escape);
    deleteLater();
    EXPECT_EQ(m_panel->findChild<OssColorPicker *>(), nullptr) << "closed from beside it";
    EXPECT_EQ(tint(), OssColor(9, 0.5, 2)) << "and kept";
}

TEST_F(PropertyEditors, thePickerTakesWhatAWidgetSaysIsThereBeforeTheScreen)
{
    OssColorPicker *picker = openTint();
    PixelsOfItsOwn viewer;
    viewer.setGeometry(500, 400, 100, 100);
    viewer.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&viewer));
    const auto pick = [&](const QPoint &at) {
        picker->pickFromScreen();
        const QPoint global = viewer.mapToGlobal(at);
        QMouseEvent press(QEvent::MouseButtonPress, picker->mapFromGlobal(global), global,
                          Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(picker, &press);
    };
    pick({10, 10});
    EXPECT_EQ(tint(), OssColor(10, -1, 0.5, 1));
    EXPECT_EQ(undoCount(), 1);
    picker->pickFromScreen();
    QTest::keyClick(picker, Qt::Key_Escape);
    EXPECT_TRUE(picker->isVisible()) << "only the picking ended";
    EXPECT_EQ(tint().red(), 10.0);
}

TEST_F(PropertyEditors, aDisplayColourIsWhatIsSeen)
{
    const OssColor linear(0.2, 0.5, 0.9, 0.5);
    const OssColor back = OssDisplayColor::toLinear(OssDisplayColor::ofLinear(linear));
    EXPECT_NEAR(back.red(), 0.2, 1e-4);
    EXPECT_NEAR(back.blue(), 0.9, 1e-4);
    EXPECT_NEAR(OssDisplayColor::ofLinear(OssColor(0.5, 0, 0)).redF(), 0.7354, 1e-3);
    for (const bool isDisplay : {false, true}) {
        OssColorPicker picker({isDisplay, 0.0, 1.0}, OssColor(0, 0, 0), nullptr);
        auto *code = picker.findChild<QLineEdit *>();
        code->setText({});
        QTest::keyClicks(code, text("#bc0000"));
        QTest::keyClick(code, Qt::Key_Return);
        EXPECT_NEAR(picker.color().red(), isDisplay ? 0.737 : 0.503, 2e-3);
        type(named(&picker, "Green"), "-3");
        EXPECT_EQ(picker.color().green(), 0.0) << "the attribute's bounds";
    }
}

TEST_F(PropertyEditors, theSwatchIsTheColour)
{
    OssPropertyEditor *tint = row("Tint")->editor();
    const auto *swatch = tint->findChild<QPushButton *>();
    OssCustomAttribute red = m_node->userAttribute(text("Tint"));
    red.setValue(QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    for (const bool mixed : {false, true}) {
        tint->showValue(red, OssMixed(mixed));
        const QImage icon = swatch->icon().pixmap(swatch->iconSize()).toImage();
        EXPECT_EQ(icon.pixelColor(3, icon.height() / 2) == QColor(Qt::red), !mixed);
    }
}

TEST_F(PropertyEditors, valuesThatDifferLookLikeNone)
{
    for (const char *name : {"Tint", "Pictures", "Mode", "Amount", "On"}) {
        OssPropertyEditor *one = row(name)->editor();
        const auto picture = [&](bool mixed) {
            one->showValue(m_node->userAttribute(text(name)), OssMixed(mixed));
            return one->grab().toImage();
        };
        const QImage plain = picture(false);
        EXPECT_NE(picture(true), plain) << name;
        EXPECT_EQ(picture(false), plain) << name;
    }
}

TEST_F(PropertyEditors, whatIsPastedIsReadAsTheValueIsWritten)
{
    const std::tuple<const char *, const char *, QVariant> cases[] = {
        {"Amount", "2*3", 6.0},       {"Amount", " 0.25 ", 0.25},   {"Amount", "", {}},
        {"Amount", "two", {}},        {"Count", "1+3", 4},          {"Count", "(", {}},
        {"Line", "2*3", text("2*3")}, {"Mode", "Mix", text("Mix")}, {"Place", "nowhere", {}},
    };
    for (const auto &[name, pasted, wanted] : cases) { // null: refused
        const QVariant before = value(name);
        QApplication::clipboard()->setText(text(pasted));
        row(name)->pasteValue();
        EXPECT_EQ(value(name), wanted.isValid() ? wanted : before) << pasted;
    }
    m_panel->setLocked(true);
    QApplication::clipboard()->setText(text("0.5"));
    row("Amount")->pasteValue();
    EXPECT_EQ(amount(), 0.25);
}

TEST_F(PropertyEditors, theWheelOverAListIsThePanelsWithoutTheFocus)
{
    auto *mode = editor<QComboBox>("Mode");
    QApplication::setActiveWindow(m_panel.get());
    field("Amount")->setFocus();
    turnWheel(mode, {5, 5}, -120);
    EXPECT_EQ(mode->currentIndex(), 0);
    mode->setFocus();
    ASSERT_TRUE(mode->hasFocus());
    turnWheel(mode, {5, 5}, -120);
    EXPECT_EQ(mode->currentIndex(), 1);
}

TEST_F(PropertyEditors, keysThatMeanSomethingDoNotRunCommands)
{
    OssNumberField *number = field("Amount");
    EXPECT_TRUE(takesShortcut(number, Qt::Key_5, {}, text("5")));
    EXPECT_FALSE(takesShortcut(number, Qt::Key_5, Qt::ControlModifier, text("5")));
    auto *curve = editor<OssCurveField>("Shape");
    EXPECT_TRUE(takesShortcut(curve, Qt::Key_Delete));
    EXPECT_FALSE(takesShortcut(curve, Qt::Key_Delete, Qt::ControlModifier));
    EXPECT_FALSE(takesShortcut(curve, Qt::Key_F));
}

TEST(FileEditor, takesAFileThatIsDroppedOnItAndNothingElse)
{
    Alone<QLineEdit> file("file");
    const QString path = text("/pictures/wood.exr");
    const std::pair<QList<QUrl>, QStringList> cases[] = {
        {{QUrl::fromLocalFile(path)}, {path}},
        {{QUrl(text("https://example.com/wood.exr"))}, {}},
        {{}, {}},
    };
    for (const auto &[urls, edits] : cases) {
        QMimeData mime;
        mime.setUrls(urls);
        dragOver(file.widget, mime);
        EXPECT_TRUE(file.edits().isEmpty()) << "it is still in the user's hand";
        dropOn(file.widget, mime);
        EXPECT_EQ(file.edits(), edits) << urls.size();
    }
}

TEST(FileEditor, marksAMissingFileUntilItIsThere)
{
    const QTemporaryDir folder;
    writeFile(folder.filePath(text("wall.1001.exr")));
    Alone<QLineEdit> file("file");
    const std::tuple<const char *, bool, bool> cases[] = {
        {"none.exr", false, true},        {"none.exr", true, false},
        {"wall.1001.exr", false, false},  {"wall.<UDIM>.exr", false, false},
        {"roof.<UDIM>.exr", false, true}, {"", false, false},
    };
    for (const auto &[name, mixed, wrong] : cases) {
        file.show(*name ? folder.filePath(text(name)) : QString(), mixed);
        EXPECT_EQ(file.widget->toolTip().startsWith(text("There is no file")), wrong) << name;
        EXPECT_EQ(file.widget->objectName() == text("Warning"), wrong) << name;
    }
}

TEST(FileEditor, letsTheUserChooseInADialog)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(text("wood.png"));
    writeFile(picture);
    Alone<QPushButton> file("file");
    for (const QStringList &chosen : {QStringList(), QStringList{picture}}) {
        const DialogAnswers answers(chosen.value(0));
        file.widget->click();
        EXPECT_EQ(answers.questions, 1);
        EXPECT_EQ(file.edits(), chosen) << "leaving it changes nothing";
    }
}

TEST(TextEditor, leavesTheCursorWhereItIsWhenTheSameIsShownAgain)
{
    Alone<QLineEdit> line("text");
    line.show(text("moss"));
    line.widget->setCursorPosition(1);
    line.show(text("moss"));
    EXPECT_EQ(line.widget->cursorPosition(), 1);
    line.show(text("rust"));
    EXPECT_EQ(line.widget->text(), text("rust"));
}

TEST(NoteEditor, keepsWhatWasWrittenOnceWhenItLosesTheFocus)
{
    Alone<QPlainTextEdit> note("paragraph");
    note.show(text("old"));
    loseFocus(note.widget);
    EXPECT_TRUE(note.edits().isEmpty()) << "nothing was written";
    QTest::keyClicks(note.widget, text("new "));
    EXPECT_TRUE(note.edits().isEmpty());
    loseFocus(note.widget);
    loseFocus(note.widget);
    EXPECT_EQ(note.edits(), texts({"new old"}));
    note.show(text("old"), true);
    EXPECT_TRUE(note.widget->toPlainText().isEmpty()) << "of several nodes that differ";
    EXPECT_FALSE(note.widget->placeholderText().isEmpty());
}

TEST(NoteEditor, keepsItAtControlAndReturnWithoutANewLine)
{
    Alone<QPlainTextEdit> note("paragraph");
    QTest::keyClicks(note.widget, text("a"));
    QTest::keyPress(note.widget, Qt::Key_Return);
    QTest::keyRelease(note.widget, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(note.edits().isEmpty());
    QTest::keyPress(note.widget, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(note.edits(), texts({"a\n"}));
    EXPECT_EQ(note.widget->toPlainText(), text("a\n"));
}

#include "PropertyEditors_test.moc"
