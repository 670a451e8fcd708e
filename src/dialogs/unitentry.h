#pragma once

#include <QWidgetAction>

class QLabel;
class mLineEdit;

/**
 * The entry of a menu in which the user writes a unit of his own.
 *
 * Escape gives up what was typed. What is only passed on the way through the menu is not reported.
 */
class UnitEntry : public QWidgetAction
{
    Q_OBJECT
public:
    explicit UnitEntry(QObject *parent);

    /** Shows a unit as the one in effect. */
    void setUnit(const QString &unit);

signals:
    /** The line was pressed. */
    void pressed();
    /** The user has written another unit than was shown. */
    void entered(const QString &unit);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void reportEntry();

    QLabel *m_check;
    mLineEdit *m_line;
    QString m_shown;
};
