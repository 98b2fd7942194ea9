#pragma once

#include "OssInterface/Popups/OssApplication.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <functional>

/// Acts on the dialog that the next call opens.
template <class Dialog>
void whenOpen(const std::function<void(Dialog *)> &act)
{
    QTimer::singleShot(0, [act] {
        auto *popup = qobject_cast<Dialog *>(QApplication::activePopupWidget());
        auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        ASSERT_TRUE(popup || dialog);
        act(popup ? popup : dialog);
    });
}

/// Presses a button of the box that the next call opens, and keeps what the box says.
inline void answerWith(QMessageBox::StandardButton button, QString *said = nullptr)
{
    whenOpen<QMessageBox>([button, said](QMessageBox *box) {
        if (said)
            *said = box->text();
        ASSERT_NE(box->button(button), nullptr);
        box->button(button)->click();
    });
}

/// A user for the dialogs that open while it lives: file dialogs get `file` and are cancelled without
/// one, questions for a text or an entry get `text` the same way, boxes get the button.
class DialogAnswers
{
public:
    explicit DialogAnswers(const QString &file = QString(),
                           QMessageBox::StandardButton button = QMessageBox::Cancel,
                           const QString &text = QString())
        : m_popups(OssApplication::popupsAllowed())
    {
        OssApplication::setPopupsAllowed(true);
        QObject::connect(&m_look, &QTimer::timeout, [=] { answer(file, button, text); });
        m_look.start(5);
    }

    ~DialogAnswers() { OssApplication::setPopupsAllowed(m_popups); }

    DialogAnswers(const DialogAnswers &) = delete;
    DialogAnswers &operator=(const DialogAnswers &) = delete;

    int questions = 0;   ///< file dialogs and questions for a text
    QStringList boxes;   ///< what message boxes said
    QStringList offered; ///< the entries of the last question for one

private:
    void answer(const QString &file, QMessageBox::StandardButton button, const QString &text)
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || modal == m_last)
            return;
        m_last = modal;
        if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            boxes.append(box->text());
            QAbstractButton *wanted = box->button(button);
            if (wanted)
                wanted->click();
            else
                box->close();
            return;
        }
        auto *files = qobject_cast<QFileDialog *>(modal);
        auto *input = qobject_cast<QInputDialog *>(modal);
        if (!files && !input) // the progress of some work
            return;
        ++questions;
        if (files && !file.isEmpty()) {
            // Typed: a file that is selected does not change a name whose field has the keyboard.
            files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(file);
            static_cast<QDialog *>(files)->accept();
            if (m_last && m_last->isVisible()) { // a test that fails rather than waits
                ADD_FAILURE() << "not taken: " << file.toStdString();
                modal->close();
            }
        } else if (input && !text.isEmpty()) {
            offered = input->comboBoxItems();
            input->setTextValue(text);
            input->accept();
        } else {
            modal->close();
        }
    }

    bool m_popups;
    QTimer m_look;
    QPointer<QWidget> m_last;
};
