#pragma once

#include "OssInterface/Properties/OssPropertyEditor.h"

class QLineEdit;
class QPlainTextEdit;

/// Edits a line of text.
class OssLineEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssLineEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

protected:
    QLineEdit *line() const { return m_line; }

private:
    QLineEdit *m_line;
};

/// Edits text of several lines: a change counts when the field is left or with Ctrl+Enter.
class OssParagraphEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssParagraphEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void finish();

    QPlainTextEdit *m_text;
};

/// Edits the path of a file (OssFilePath): typed, chosen or dropped. One that is not there is shown as
/// such.
class OssFileEditor : public OssLineEditor
{
    Q_OBJECT

public:
    explicit OssFileEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;
    /// Whether there is such a file; a pattern (OssUdimPath) stands for any file of a patch.
    static bool fileExists(const QString &path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void choose();
    /// Shows whether the file is there.
    void look();

    QString m_title;
    QString m_path;
};
