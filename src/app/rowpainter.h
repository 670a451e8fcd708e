#pragma once

#include "app/rowcontent.h"

class QTableWidget;

/**
 * Brings the cells `first` to `last` of a row to their content. Cells that are missing are made;
 * what already is as it should be is not touched, so that nothing is painted again in vain.
 */
void paintRow(QTableWidget *table, int row, const RowContent &content, int first = 0,
              int last = tableColumns - 1);
