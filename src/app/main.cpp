#include "app/mainwindow.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QSplashScreen>
#include <QStyle>
#include <QStyleFactory>
#include <QTimer>
#include <QTranslator>
#include <QWindow>

namespace
{

constexpr int buildNumber = 110;
constexpr int longestWaitMs = 1000;
constexpr char buildDate[] = "Mar  5 2024";

void setIdentity()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Tavrel"));
    QCoreApplication::setApplicationName(QStringLiteral("nox8"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NOX8_VERSION));
}

/**
 * Keeps the platform plugin from loading OpenGL, with which nothing here is drawn: its libraries
 * cost memory, and time before the first window. A choice of the user's own stays.
 */
void leaveOpenGlOut()
{
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
}

/**
 * Ends the splash screen as soon as the window is on the screen.
 *
 * QSplashScreen::finish() waits for that too, but asleep for 10 ms at a time.
 */
void finishSplash(QSplashScreen &splash, QWidget &window)
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(longestWaitMs);
    while (limit.isActive() && !window.windowHandle()->isExposed())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    splash.finish(&window);
}

} // namespace

int main(int argc, char *argv[])
{
    setIdentity();
    leaveOpenGlOut();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    // without it each dialog takes the button off by itself, which styles all its widgets anew
    QApplication::setAttribute(Qt::AA_DisableWindowContextHelpButton);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    const QApplication application(argc, argv);
    // the colours of tables, panels and plot are made for a light ground, whatever the desktop has
    QApplication::setPalette(QApplication::style()->standardPalette());
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/resource/images/nox8.svg")));

    QSplashScreen splash(QPixmap(QStringLiteral(":/resource/images/splash3.png")));
    splash.show();
    QApplication::processEvents();

    QTranslator translator;
    translator.load(QStringLiteral("qt_") + QLocale::system().name(),
                    QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    QApplication::installTranslator(&translator);

    MainWindow window;
    window.setProperty("BUILD_NUMBER", buildNumber);
    window.setProperty("BUILD_DATE", QString::fromLatin1(buildDate));
    window.showMaximized();
    finishSplash(splash, window);
    return QApplication::exec();
}
