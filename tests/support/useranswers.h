#pragma once

#include "widgets/userdialogs.h"

#include <QVector>

/** Answers in place of the user as long as it lives, and keeps what was asked and told. */
struct UserAnswers {
    UserAnswers()
    {
        UserDialogs::current().ask = [this](QWidget *, const Message &message) {
            asked << message;
            const auto given = answer; // what happens meanwhile may end this object
            meanwhile();
            return given;
        };
        UserDialogs::current().tell = [this](QWidget *, const Message &message) {
            told << message;
        };
        UserDialogs::current().chooseColor = [this](QWidget *, const QColor &now) {
            offeredColors << now;
            const QColor given = color;
            meanwhile();
            return given;
        };
        UserDialogs::current().chooseFile = [this](QWidget *, const FileQuestion &question) {
            files << question;
            const QString given = file;
            meanwhile();
            return given;
        };
    }
    ~UserAnswers() { UserDialogs::current() = UserDialogs::onScreen(); }
    UserAnswers(const UserAnswers &) = delete;
    UserAnswers &operator=(const UserAnswers &) = delete;

    QVector<Message> asked;
    QVector<Message> told;
    QVector<QColor> offeredColors; ///< each the one that a question started from
    QVector<FileQuestion> files;
    QMessageBox::StandardButton answer = QMessageBox::No;
    QColor color;                            ///< invalid: none is chosen
    QString file;                            ///< empty: none is chosen
    std::function<void()> meanwhile = [] {}; ///< what happens while something is asked
};

/** A message as one text: its icon, title, text, buttons and default. */
inline QString seen(const Message &message)
{
    return QStringLiteral("%1 [%2] %3 %4/%5")
        .arg(int(message.icon))
        .arg(message.title, message.text)
        .arg(uint(message.buttons), 0, 16)
        .arg(uint(message.defaultButton), 0, 16);
}
