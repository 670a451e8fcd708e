#pragma once

#include "widgets/userdialogs.h"

#include <QWidget>

#include <memory>

namespace Ui
{
class ResultsFileForm;
}

// What the user is asked when a file is to be chosen, and told when it cannot be written.
// `directory` is where the dialog begins, `name` is preselected and may be empty.

/** Asks for a results file to be written. */
FileQuestion resultsFileQuestion(const QString &directory, const QString &name);
/** Asks for a results file to be read. */
FileQuestion savedResultsQuestion(const QString &directory);
/** Asks for a picture of the plot to be written. */
FileQuestion plotImageQuestion(const QString &directory, const QString &name);

/** That a file could not be written. */
Message writeFailure();

/** What is chosen with the controls of a results file. */
struct ResultsFileChoice {
    QString fileName;         ///< empty while none is chosen
    QString fieldSeparator;   ///< one character
    QString decimalSeparator; ///< ".", "," or empty: as numbers are written here
    int decimals = 4;
    int intervalMinutes = 0;
};

/** The controls that the dialogs of results files share: number format, separators, interval and
 *  file. */
class ResultsFileForm : public QWidget
{
    Q_OBJECT
public:
    explicit ResultsFileForm(QWidget *parent = nullptr);
    ~ResultsFileForm() override;

    /** Leads the keyboard to the button that chooses the file. */
    void focusFileButton();

    /** What the controls say. */
    ResultsFileChoice choice() const;
    /** Shows a choice; a separator that there is not leaves its control as it was. */
    void setChoice(const ResultsFileChoice &choice);
    void setDecimalSeparator(const QString &separator);

    /** The directory in which the file dialog begins: at first the user's home. */
    void setDirectory(const QString &directory) { m_directory = directory; }
    QString directory() const { return m_directory; }

    /** Asks for the file; `name` is preselected. True when the user has chosen one, whose directory
     *  is then that of the next question. */
    bool chooseFile(const QString &name, bool asksToReplace);

private:
    std::unique_ptr<Ui::ResultsFileForm> m_ui;
    QString m_directory;
};
