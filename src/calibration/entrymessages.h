#pragma once

class QString;
class QWidget;

/** Asks under `warning` whether the references of an instrument are to be changed. False, too, when
 *  the tab that asks is gone by the time of the answer. */
bool isChangeWanted(QWidget *tab, const QString &warning);

/** Tells that the numbers entered in a tab are wrong. */
void tellWrongEntry(QWidget *tab);
