#pragma once

#include <QFileDialog>
#include <QString>

#include <functional>

class QWidget;

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
 * The one way in which files are chosen; a test replaces the function and so gives the answer.
 */
struct FileDialogs {
    /** The file that the user has chosen; empty for none. */
    std::function<QString(QWidget *parent, const FileQuestion &question)> choose;

    /** The dialogs in effect: at first those on the screen. */
    static FileDialogs &current();
    /** Those on the screen. */
    static FileDialogs onScreen();
};

/** Asks for a results file to be written. */
FileQuestion resultsFileQuestion(const QString &directory, const QString &name);
/** Asks for a results file to be read. */
FileQuestion savedResultsQuestion(const QString &directory);
/** Asks for a picture of the plot to be written. */
FileQuestion plotImageQuestion(const QString &directory, const QString &name);
