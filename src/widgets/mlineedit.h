#pragma once

#include <QLineEdit>

/** A line edit that tells when it is pressed and when the user has ended with Return or Enter. */
class mLineEdit : public QLineEdit
{
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;

signals:
    /** A mouse button was pressed on it. */
    void clicked();
    /** Return or Enter was pressed; the text is as it was then. */
    void enterPress();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
