#include "device/vocabulary.h"
#include "simulator/commandline.h"
#include "simulator/terminationsignals.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>
#include <QTimer>

#include <memory>
#include <sys/resource.h>
#include <vector>

namespace
{

using Instruments = std::vector<std::unique_ptr<SimulatedInstrument>>;

QTextStream &out()
{
    static QTextStream stream(stdout);
    stream.setCodec("UTF-8");
    return stream;
}

void listModels()
{
    const auto models = instrumentModels();
    for (const InstrumentModel *model : models)
        out() << modelName(*model) << Qt::endl;
}

/** Each instrument of a fleet needs a descriptor: asks for as many as the system grants. */
void raiseDescriptorLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/** The first name nox0, nox1, ... without a link, or whose link leads nowhere. */
QString freePortName(const QString &directory)
{
    for (int number = 0;; ++number) {
        const QString name = QStringLiteral("nox%1").arg(number);
        if (!QFileInfo::exists(directory + '/' + name))
            return name;
    }
}

void announce(const SimulatedInstrument &instrument, const SimulatedInstrumentOptions &options)
{
    out() << instrument.portName() << ' ' << options.identity.modelName << QStringLiteral(" № ")
          << options.identity.serialNumber << ' ' << instrument.devicePath() << Qt::endl;
}

void pullPlugLater(SimulatedInstrument &instrument, int afterMs, int returnAfterMs)
{
    QTimer::singleShot(afterMs, &instrument, [&instrument, returnAfterMs] {
        instrument.unplug();
        if (returnAfterMs > 0)
            QTimer::singleShot(returnAfterMs, &instrument, &SimulatedInstrument::plugIn);
    });
}

/** Plugs one instrument in and announces it; false with a message if that fails. */
bool play(Instruments &instruments, const SimulatedInstrumentOptions &options,
          const QString &portName, int unplugAfterMs)
{
    auto instrument = std::make_unique<SimulatedInstrument>(options, portName);
    if (!instrument->plugIn()) {
        QTextStream(stderr) << portName << ": " << instrument->errorText() << Qt::endl;
        return false;
    }
    announce(*instrument, options);
    if (unplugAfterMs > 0)
        pullPlugLater(*instrument, unplugAfterMs, options.faults.returnAfterMs);
    instruments.push_back(std::move(instrument));
    return true;
}

bool playAll(Instruments &instruments, const SimulatorCommand &command)
{
    if (command.fleetSize == 0) {
        const QString directory = command.instrument.portsDirectory.isEmpty()
                                      ? defaultPortsDirectory()
                                      : command.instrument.portsDirectory;
        const QString name =
            command.portName.isEmpty() ? freePortName(directory) : command.portName;
        return play(instruments, command.instrument, name, command.unplugAfterMs);
    }
    raiseDescriptorLimit();
    const QString prefix = command.portName.isEmpty() ? QStringLiteral("nox") : command.portName;
    int number = 0;
    for (const auto &options : fleetOf(command.instrument, command.fleetSize)) {
        const QString name = prefix + QStringLiteral("%1").arg(number++, 3, 10, QLatin1Char('0'));
        if (!play(instruments, options, name, command.unplugAfterMs))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("nox8-sim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NOX8_VERSION));

    const SimulatorCommand command = readSimulatorCommand(QCoreApplication::arguments());
    switch (command.kind) {
    case SimulatorCommand::Refuse:
        QTextStream(stderr) << command.text << Qt::endl;
        return 2;
    case SimulatorCommand::ShowHelp:
    case SimulatorCommand::ShowVersion:
        out() << command.text.trimmed() << Qt::endl;
        return 0;
    case SimulatorCommand::ListModels:
        listModels();
        return 0;
    case SimulatorCommand::Play:
        break;
    }

    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &application,
                     &QCoreApplication::quit);
    Instruments instruments;
    if (!playAll(instruments, command))
        return 1;
    return QCoreApplication::exec();
}
