#include "OssInterface/Properties/OssChoiceEditors.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QWheelEvent>

#include <functional>

namespace {

/// Shows an entry, or that the values differ; -1 without differing values shows nothing.
void showEntry(QComboBox *list, int index, const QString &mixedText)
{
    list->setPlaceholderText(mixedText);
    list->setCurrentIndex(mixedText.isEmpty() ? index : -1);
}

/// A list that leaves the wheel to the panel around it while it has not the focus.
class CalmComboBox final : public QComboBox
{
public:
    /// Calls it when something was chosen in the list that was open: there is nothing more to do
    /// here, and letters would choose something else.
    void whenChosen(const std::function<void()> &done)
    {
        connect(this, qOverload<int>(&QComboBox::activated), this, [this, done] {
            if (m_closes)
                done();
        });
    }

    void hidePopup() override
    {
        m_closes = true;
        QComboBox::hidePopup();
        QMetaObject::invokeMethod(
            this, [this] { m_closes = false; }, Qt::QueuedConnection);
    }

    explicit CalmComboBox(QWidget *parent)
        : QComboBox(parent)
    {
        setFocusPolicy(Qt::StrongFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(6);
    }

protected:
    void wheelEvent(QWheelEvent *event) override
    {
        if (hasFocus())
            QComboBox::wheelEvent(event);
        else
            event->ignore();
    }

private:
    bool m_closes = false;
};

} // namespace

// --- choice

OssChoiceEditor::OssChoiceEditor(QWidget *parent)
    : OssPropertyEditor(parent)
{
    auto *list = new CalmComboBox(this);
    m_list = list;
    makeRow()->addWidget(m_list);
    setFocusProxy(m_list);
    connect(m_list, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        OssUserEnum value = m_value;
        value.setCurrentValue(index);
        Q_EMIT edited(QVariant::fromValue(value));
    });
    list->whenChosen([this] { Q_EMIT left(); });
}

void OssChoiceEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    const auto value = attribute.value().value<OssUserEnum>();
    if (value.names() != m_value.names()) {
        m_list->clear();
        m_list->addItems(value.names());
    }
    m_value = value;
    // A choice that is none of the list stays unchosen.
    showEntry(m_list, value.currentValue() < m_list->count() ? value.currentValue() : -1,
              mixed.any ? mixedText() : QString());
    m_list->setAccessibleName(attribute.prettyName());
}

void OssChoiceEditor::explainChoice(const QString &choice, const QString &meaning)
{
    const int index = m_value.names().indexOf(choice);
    if (index >= 0)
        m_list->setItemText(index, meaning.isEmpty() ? choice : tr("%1 (%2)").arg(choice, meaning));
}

// --- color space

OssColorSpaceEditor::OssColorSpaceEditor(QWidget *parent)
    : OssPropertyEditor(parent)
{
    auto *list = new CalmComboBox(this);
    m_list = list;
    makeRow()->addWidget(m_list);
    setFocusProxy(m_list);
    connect(m_list, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { Q_EMIT edited(m_list->itemData(index)); });
    list->whenChosen([this] { Q_EMIT left(); });
}

void OssColorSpaceEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    QStringList names{QString()};
    const std::vector<std::string> known = OssColorManagement::spaces()->names();
    for (const std::string &name : known)
        names.append(QString::fromStdString(name));
    // What another configuration has stays, and is seen.
    const QString chosen = attribute.value().toString();
    if (!names.contains(chosen))
        names.append(chosen);
    QStringList listed;
    for (int i = 0; i < m_list->count(); ++i)
        listed.append(m_list->itemData(i).toString());
    if (names != listed) {
        m_list->clear();
        for (const QString &name : qAsConst(names))
            m_list->addItem(name.isEmpty() ? tr("Automatic") : name, name);
    }
    showEntry(m_list, names.indexOf(chosen), mixed.any ? mixedText() : QString());
    m_list->setAccessibleName(attribute.prettyName());
}

void OssColorSpaceEditor::explainChoice(const QString &, const QString &meaning)
{
    m_list->setItemText(0, meaning.isEmpty() ? tr("Automatic") : tr("Automatic (%1)").arg(meaning));
}

// --- flag

OssFlagEditor::OssFlagEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_box(new QCheckBox(this))
{
    makeRow()->addWidget(m_box);
    setFocusProxy(m_box);
    m_box->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    connect(m_box, &QCheckBox::clicked, this, [this] {
        m_box->setTristate(false);
        Q_EMIT edited(m_box->isChecked());
    });
}

void OssFlagEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_box->setTristate(mixed.any);
    m_box->setCheckState(mixed.any                    ? Qt::PartiallyChecked
                         : attribute.value().toBool() ? Qt::Checked
                                                      : Qt::Unchecked);
    m_box->setAccessibleName(attribute.prettyName());
}

// --- images

OssImagesEditor::OssImagesEditor(QWidget *parent)
    : OssPropertyEditor(parent)
{
    auto *list = new CalmComboBox(this);
    m_list = list;
    makeRow()->addWidget(m_list);
    setFocusProxy(m_list);
    setAcceptDrops(true);
    m_list->installEventFilter(this);
    connect(m_list, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        const QString id = m_list->itemData(index).toString();
        Q_EMIT edited(id.isEmpty() ? QStringList() : QStringList{id});
    });
    list->whenChosen([this] { Q_EMIT left(); });
}

bool OssImagesEditor::eventFilter(QObject *watched, QEvent *event)
{
    // Images come and go while the panel is open; the list is made when it is wanted.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::FocusIn)
        fillList();
    return OssPropertyEditor::eventFilter(watched, event);
}

void OssImagesEditor::fillList()
{
    m_list->clear();
    m_list->addItem(tr("None"));
    const QList<OssImage *> images = OssImageManager::instance()->images();
    for (const OssImage *image : images)
        m_list->addItem(QFileInfo(image->path()).fileName(), image->uniqueId().toString());
    const QString id = m_ids.value(0);
    int index = id.isEmpty() ? 0 : m_list->findData(id);
    if (index < 0) {
        m_list->addItem(tr("Image that is not here"), id);
        index = m_list->count() - 1;
    }
    if (m_ids.size() > 1)
        m_list->setItemText(
            index, tr("%1 and %n more", "", m_ids.size() - 1).arg(m_list->itemText(index)));
    m_list->setCurrentIndex(index);
}

void OssImagesEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_ids = OssImageList::fromVariant(attribute.value()).toVariant().toStringList();
    m_list->setAccessibleName(attribute.prettyName());
    fillList();
    showEntry(m_list, m_list->currentIndex(), mixed.any ? mixedText() : QString());
}

void OssImagesEditor::dragEnterEvent(QDragEnterEvent *event)
{
    if (OssImageManager::bringsImages(event->mimeData()))
        event->acceptProposedAction();
}

void OssImagesEditor::dropEvent(QDropEvent *event)
{
    // Files that the project does not have yet are opened in the same step.
    const OssUndoManager::Gathering gathering(tr("Drop Images"));
    OssImageList list;
    const QList<OssImage *> images = OssImageManager::instance()->dropped(event);
    for (const OssImage *image : images)
        list.append(image->uniqueId());
    if (images.isEmpty())
        return;
    event->acceptProposedAction();
    Q_EMIT edited(list.toVariant());
}
