#pragma once

#include "widgets/userdialogs.h"

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
