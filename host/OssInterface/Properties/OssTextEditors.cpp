#include "OssInterface/Properties/OssTextEditors.h"

#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Images/OssUdimPath.h"

#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QStyle>
#include <QUrl>

namespace {

constexpr int ParagraphLines = 4;

/// Takes a style sheet's rules for the name at once.
void setLooksWrong(QWidget *widget, bool wrong)
{
    const QString name = wrong ? QStringLiteral("Warning") : QString();
    if (widget->objectName() == name)
        return;
    widget->setObjectName(name);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

// --- line

OssLineEditor::OssLineEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_line(new QLineEdit(this))
{
    makeRow()->addWidget(m_line);
    setFocusProxy(m_line);
    connect(m_line, &QLineEdit::editingFinished, this, [this] {
        if (!m_line->isModified())
            return;
        m_line->setModified(false);
        Q_EMIT edited(m_line->text());
    });
    connect(m_line, &QLineEdit::returnPressed, this, &OssPropertyEditor::left);
}

void OssLineEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_line->setAccessibleName(attribute.prettyName());
    m_line->setPlaceholderText(mixed.any ? mixedText() : QString());
    const QString text = mixed.any ? QString() : attribute.value().toString();
    if (m_line->text() != text)
        m_line->setText(text);
}

// --- paragraph

OssParagraphEditor::OssParagraphEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_text(new QPlainTextEdit(this))
{
    makeRow()->addWidget(m_text);
    setFocusProxy(m_text);
    m_text->setTabChangesFocus(true);
    // Not the field's own: a style sheet may set that to its least height.
    setFixedHeight(fontMetrics().lineSpacing() * ParagraphLines + 18);
    m_text->installEventFilter(this);
}

void OssParagraphEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_text->setAccessibleName(attribute.prettyName());
    m_text->setPlaceholderText(mixed.any ? mixedText() : QString());
    const QString text = mixed.any ? QString() : attribute.value().toString();
    if (m_text->toPlainText() != text)
        m_text->setPlainText(text);
    m_text->document()->setModified(false);
}

bool OssParagraphEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut)
        finish();
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return && key->modifiers() & Qt::ControlModifier) {
            finish();
            Q_EMIT left();
            return true;
        }
    }
    return OssPropertyEditor::eventFilter(watched, event);
}

void OssParagraphEditor::finish()
{
    if (!m_text->document()->isModified())
        return;
    m_text->document()->setModified(false);
    Q_EMIT edited(m_text->toPlainText());
}

// --- file

OssFileEditor::OssFileEditor(QWidget *parent)
    : OssLineEditor(parent)
{
    auto *browse = new OssMiniButton(QStringLiteral("..."), this);
    browse->setToolTip(tr("Choose a file"));
    browse->setAccessibleName(tr("Choose a file"));
    layout()->addWidget(browse);
    connect(browse, &QPushButton::clicked, this, &OssFileEditor::choose);
    line()->installEventFilter(this);
}

void OssFileEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    OssLineEditor::showValue(attribute, mixed);
    m_title = attribute.prettyName();
    m_path = mixed.any ? QString() : attribute.value().toString();
    look();
}

void OssFileEditor::look()
{
    const QString path = OssFilePath::resolved(m_path);
    const bool missing = !path.isEmpty() && !fileExists(path);
    setLooksWrong(line(), missing);
    const QString tip = missing ? tr("There is no file \"%1\"").arg(path) : path;
    line()->setToolTip(tip);
    line()->setAccessibleDescription(missing ? tip : QString());
}

bool OssFileEditor::fileExists(const QString &path)
{
    return QFileInfo::exists(path) || !OssUdimPath::patches(path).isEmpty();
}

void OssFileEditor::choose()
{
    // Where the file is, or was.
    const QString folder = QFileInfo(OssFilePath::resolved(m_path)).path();
    const QString path = OssFileDialog::getOpenFileName(
        m_title, OssImageManager::fileFilter() + QStringLiteral(";;") + tr("All files (*)"),
        QStringLiteral("AttributeFilePath"), this,
        !m_path.isEmpty() && QDir(folder).exists() ? folder : QString());
    if (!path.isEmpty())
        Q_EMIT edited(OssFilePath::shortened(path));
}

bool OssFileEditor::eventFilter(QObject *watched, QEvent *event)
{
    // Files come and go while the panel is open.
    if (event->type() == QEvent::Enter || event->type() == QEvent::FocusIn)
        look();
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop) {
        auto *drop = static_cast<QDropEvent *>(event);
        const QList<QUrl> urls = drop->mimeData()->urls();
        if (!urls.isEmpty() && urls.first().isLocalFile()) {
            drop->acceptProposedAction();
            if (event->type() == QEvent::Drop)
                Q_EMIT edited(OssFilePath::shortened(urls.first().toLocalFile()));
            return true;
        }
    }
    return OssLineEditor::eventFilter(watched, event);
}
