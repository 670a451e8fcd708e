#pragma once

#include <QColor>
#include <QFileDialog>
#include <QMessageBox>

#include <functional>

class QWidget;

/** What a message box says and offers. */
struct Message {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/** What a file dialog asks for. */
struct FileQuestion {
    QFileDialog::AcceptMode mode = QFileDialog::AcceptSave;
    QString title;
    QString filter;
    QString defaultSuffix; ///< for a name without one
    QString directory;     ///< where the dialog begins
    QString name;          ///< preselected, without a directory; may be empty
    bool asksToReplace = true;
};

/**
 * The one way in which the program asks its user something.
 *
 * A test replaces the functions and so reads the questions and gives the answers.
 */
struct UserDialogs {
    /** Shows a message and waits for the button pressed. */
    std::function<QMessageBox::StandardButton(QWidget *parent, const Message &message)> ask;
    /**
     * Shows a message and goes on. One message is on the screen at a time, and none beside a
     * question; the others wait. Whose parent is gone when its turn comes is dropped.
     */
    std::function<void(QWidget *parent, const Message &message)> tell;
    /** Asks for a colour; an invalid one when the user gives none. */
    std::function<QColor(QWidget *parent, const QColor &current)> chooseColor;
    /** Asks for a file; empty when the user chooses none. */
    std::function<QString(QWidget *parent, const FileQuestion &question)> chooseFile;

    /** The dialogs in effect: at first those on the screen. */
    static UserDialogs &current();
    /** Those on the screen. */
    static UserDialogs onScreen();
};
