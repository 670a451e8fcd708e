#pragma once

#include <QString>

#include <functional>

class MainWindow;
class QWidget;

/** Works the settings of the first instrument of a main window. */
class SettingsDriver
{
public:
    explicit SettingsDriver(MainWindow *window);

    /** Takes the picture of a widget; false when it cannot. */
    using Take = std::function<bool(QWidget *)>;

    /** Opens the settings, plays a scene of PictureOrder::settings and has a picture taken of what
     * there is to see. */
    bool play(const QString &scene, const Take &take);

private:
    void change();
    void searchSnapshots();
    void unlock();
    bool edit(const QString &scene, const Take &take);

    MainWindow *m_window;
    QWidget *m_dialog;
};
