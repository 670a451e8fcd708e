#pragma once

#include <QFrame>

class QLabel;
class QMenu;

/**
 * The body of a menu that is a card with controls in it.
 *
 * Unlike a plain widget in a menu it does not let the menu close on a click beside its controls,
 * and the keyboard stays in it: Tab goes round among the controls, Return presses a button, Escape
 * closes. When the menu opens, the card itself has the focus, so that no key changes anything
 * before the user has gone to a control.
 */
class MenuCard : public QFrame
{
    Q_OBJECT
public:
    /** The menu becomes the parent. */
    explicit MenuCard(QMenu *menu);

    /** Becomes the one entry of the menu, once it has all its controls. */
    void place();
    /** Shows a text as the title of the card, and calls the card so. */
    void showTitle(QLabel *label, const QString &text);

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool takesFocus(const QWidget *widget) const;

    QMenu *m_menu;
};
