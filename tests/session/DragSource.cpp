#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>

namespace {

constexpr int Asked = 5000; ///< milliseconds in which the other program asks for what was dropped

/// What stands on a desktop beside the program: pressed, it drags files, or the text of one.
class Handle final : public QLabel
{
public:
    explicit Handle(const QStringList &what)
        : m_what(what)
    {
        setText(QStringLiteral("drag"));
        setAlignment(Qt::AlignCenter);
        setWindowFlags(Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint);
        setStyleSheet(QStringLiteral("background: white; color: black;"));
    }

protected:
    void mouseMoveEvent(QMouseEvent *) override
    {
        auto *data = new QMimeData; // the drag's
        QList<QUrl> files;
        for (const QString &name : m_what) {
            QFile file(name);
            if (!name.endsWith(QLatin1String(".txt")))
                files.append(QUrl::fromLocalFile(QFileInfo(name).absoluteFilePath()));
            else if (file.open(QIODevice::ReadOnly))
                data->setText(QString::fromUtf8(file.readAll()));
        }
        if (!files.isEmpty())
            data->setUrls(files);
        auto *drag = new QDrag(this); // Qt's
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction);
        hide();
        QTimer::singleShot(Asked, qApp, &QCoreApplication::quit);
    }

private:
    const QStringList m_what;
};

} // namespace

/// drag_source X Y FILE...: a handle at that place of the screen, until it was dragged. Files whose names end
/// in ".txt" are dragged as text, the others as files.
int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 4)
        return 2;
    Handle handle(arguments.mid(3));
    handle.setGeometry(arguments.at(1).toInt(), arguments.at(2).toInt(), 60, 30);
    handle.show();
    return QApplication::exec();
}
