#include "simulator/commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <optional>

namespace
{

constexpr int largestFleet = 1000;

/** Takes the value of one option; false if it makes no sense. */
using Setter = bool (*)(const QString &text, SimulatorCommand &command);

struct Option {
    const char *name;
    const char *valueName; ///< null: a switch without a value
    const char *description;
    Setter set;
};

std::optional<double> numberIn(const QString &text, double lowest, double highest)
{
    bool known = false;
    const double number = text.toDouble(&known);
    if (!known || !(number >= lowest && number <= highest))
        return std::nullopt;
    return number;
}

/** Stores a number within the given bounds; "always" stands for a count without an end. */
template<typename Number>
bool store(const QString &text, Number &target, double lowest, double highest)
{
    const auto number = numberIn(text, lowest, highest);
    if (number)
        target = Number(*number);
    return number.has_value();
}

bool storeProbability(const QString &text, double &target)
{
    return store(text, target, 0.0, 1.0);
}

bool storeCount(const QString &text, int &target)
{
    if (text != QLatin1String("always"))
        return store(text, target, 0.0, 1.0e9);
    target = FaultPlan::always;
    return true;
}

bool storeSeconds(const QString &text, int &targetMs)
{
    double seconds = 0.0;
    if (!store(text, seconds, 0.0, 1.0e6))
        return false;
    targetMs = qRound(seconds * 1000.0);
    return true;
}

bool storeSignalKind(const QString &text, ThermometrySignal::Kind &target)
{
    const QStringList kinds = {"bath", "fixed-point", "ramp"};
    if (!kinds.contains(text))
        return false;
    target = ThermometrySignal::Kind(kinds.indexOf(text));
    return true;
}

bool storeAddresses(const QString &text, QSet<quint8> &target)
{
    for (const QString &part : text.split(',')) {
        quint8 address = 0;
        if (!store(part, address, 0, 255))
            return false;
        target += address;
    }
    return true;
}

using Command = SimulatorCommand;

const QVector<Option> &options()
{
    static const QVector<Option> all = {
        // which instrument
        {"model", "name", "Model of the instrument (default: NOX B).",
         [](const QString &text, Command &c) {
             c.instrument.identity.modelName = text;
             return findInstrumentModel(text) != nullptr;
         }},
        {"serial", "number", "Serial number, 0 to 65535 (default: 1234).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.identity.serialNumber, 0, 65535);
         }},
        {"own-name", "text", "Own name of an extended model, up to 16 characters.",
         [](const QString &text, Command &c) {
             c.instrument.identity.name = text;
             return true;
         }},
        {"older", nullptr, "An older instrument without an identification block.",
         [](const QString &, Command &c) {
             c.instrument.identity.answersIdentification = false;
             return true;
         }},
        {"log-marks", "count", "Time marks in the recorded log; 0 for an empty log (default: 40).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.identity.loggerMarks, 0, 400);
         }},

        // where and how
        {"port", "name", "Name of the port (default: the first free noxN).",
         [](const QString &text, Command &c) {
             c.portName = text;
             return !text.isEmpty() && !text.contains('/') && !text.startsWith('.');
         }},
        {"ports-directory", "path", "Directory of the port's link.",
         [](const QString &text, Command &c) {
             c.instrument.portsDirectory = text;
             return !text.isEmpty();
         }},
        {"fleet", "count", "Play so many instruments, models mixed.",
         [](const QString &text, Command &c) { return store(text, c.fleetSize, 1, largestFleet); }},
        {"rate", "tokens", "Readings per second in the stream; 0 for none (default: 4).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.tokensPerSecond, 0, 10000);
         }},
        {"paced", nullptr, "Send at 9600 baud instead of at once.",
         [](const QString &, Command &c) { return c.instrument.paced = true; }},
        {"timeout", "seconds", "Silence that ends a dialogue (default: 1.5).",
         [](const QString &text, Command &c) {
             return storeSeconds(text, c.instrument.dialogue.timeoutMs);
         }},
        {"word-addresses", "list", "Addresses with the word dialogue, separated by commas.",
         [](const QString &text, Command &c) {
             return storeAddresses(text, c.instrument.dialogue.wordAddresses);
         }},

        // what it measures
        {"signal", "kind", "bath, fixed-point or ramp (default: bath).",
         [](const QString &text, Command &c) {
             return storeSignalKind(text, c.instrument.signal.kind);
         }},
        {"set-point", "celsius", "Temperature of the bath or the fixed point (default: 30).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.signal.setPointCelsius, -200, 850);
         }},
        {"start", "celsius", "Temperature at which bath and ramp start (default: 21).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.signal.startCelsius, -200, 850);
         }},
        {"noise", "millikelvin", "Standard deviation of a reading (default: 1).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.signal.noiseMillikelvin, 0, 1.0e6);
         }},
        {"spread", "millikelvin", "Difference from channel to channel (default: 8).",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.signal.channelSpreadMillikelvin, -1.0e6, 1.0e6);
         }},
        {"seed", "number", "Seed of the noise and of the faults (default: 1).",
         [](const QString &text, Command &c) {
             const bool known = store(text, c.instrument.signal.seed, 0, 4294967295.0);
             c.instrument.faults.seed = c.instrument.signal.seed;
             return known;
         }},

        // what goes wrong
        {"lose", "probability", "Lose bytes at random.",
         [](const QString &text, Command &c) {
             return storeProbability(text, c.instrument.faults.lossProbability);
         }},
        {"garble", "probability", "Alter bytes at random.",
         [](const QString &text, Command &c) {
             return storeProbability(text, c.instrument.faults.garbleProbability);
         }},
        {"lose-byte", "n", "Lose the n-th byte of an answer.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.lostAnswerByte);
         }},
        {"garble-byte", "n", "Alter the n-th byte of an answer.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.garbledAnswerByte);
         }},
        {"ignore", "count", "Ignore so many addresses.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.ignoredAddressings);
         }},
        {"wrong-echo", "count", "Echo so many addresses wrongly.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.wrongAddressEchoes);
         }},
        {"extra-echo", "count", "Echo so many addresses with a second byte.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.extraEchoBytes);
         }},
        {"no-sync", "count", "Fall silent after so many confirmed addresses.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.missingSynchronisations);
         }},
        {"wrong-sync", "count", "Send so many wrong patterns of synchronisation.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.wrongPatterns);
         }},
        {"no-confirm", "count", "Leave so many blocks without a confirmation.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.missingConfirmations);
         }},
        {"wrong-confirm", "count", "Confirm so many blocks with a wrong byte.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.wrongConfirmations);
         }},
        {"short", "count", "End so many blocks or records two bytes early.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.shortBlocks);
         }},
        {"wrong-block-echo", "count", "Echo so many written blocks wrongly.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.wrongBlockEchoes);
         }},
        {"silent-after", "blocks", "Fall silent after so many blocks of every dialogue.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.silentAfterBlocks);
         }},
        {"stream-noise", "probability", "Spoil readings of the stream with foreign bytes.",
         [](const QString &text, Command &c) {
             return storeProbability(text, c.instrument.faults.streamNoiseProbability);
         }},
        {"burst", "bytes", "Send one burst of foreign bytes in the stream.",
         [](const QString &text, Command &c) {
             return store(text, c.instrument.faults.streamBurstBytes, 0, 1.0e6);
         }},
        {"unplug-after", "seconds", "Pull the plug after this time.",
         [](const QString &text, Command &c) { return storeSeconds(text, c.unplugAfterMs); }},
        {"unplug-after-bytes", "n", "Pull the plug after n bytes of an answer.",
         [](const QString &text, Command &c) {
             return storeCount(text, c.instrument.faults.unplugAfterAnswerBytes);
         }},
        {"return-after", "seconds", "Put the pulled plug in again after this time.",
         [](const QString &text, Command &c) {
             return storeSeconds(text, c.instrument.faults.returnAfterMs);
         }},
    };
    return all;
}

QCommandLineOption parserOption(const Option &option)
{
    QCommandLineOption result(QString::fromLatin1(option.name),
                              QString::fromLatin1(option.description));
    if (option.valueName)
        result.setValueName(QString::fromLatin1(option.valueName));
    return result;
}

SimulatorCommand refusal(const QString &reason)
{
    SimulatorCommand command;
    command.kind = SimulatorCommand::Refuse;
    command.text = reason;
    return command;
}

SimulatorCommand told(SimulatorCommand::Kind kind, const QString &text = {})
{
    SimulatorCommand command;
    command.kind = kind;
    command.text = text;
    return command;
}

} // namespace

SimulatorCommand readSimulatorCommand(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Plays NOX-8 thermometers on pseudo-terminals."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption listModels(QStringLiteral("list-models"),
                                        QStringLiteral("List the models and end."));
    parser.addOption(listModels);
    for (const Option &option : options())
        parser.addOption(parserOption(option));

    if (!parser.parse(arguments))
        return refusal(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return refusal(QStringLiteral("Unexpected argument: ") +
                       parser.positionalArguments().at(0));
    if (parser.isSet(help))
        return told(SimulatorCommand::ShowHelp, parser.helpText());
    if (parser.isSet(version))
        return told(SimulatorCommand::ShowVersion, QCoreApplication::applicationVersion());
    if (parser.isSet(listModels))
        return told(SimulatorCommand::ListModels);

    SimulatorCommand command;
    for (const Option &option : options()) {
        const QString name = QString::fromLatin1(option.name);
        if (parser.isSet(name) && !option.set(parser.value(name), command))
            return refusal(
                QStringLiteral("Impossible value for --%1: %2").arg(name, parser.value(name)));
    }
    return command;
}

QVector<SimulatedInstrumentOptions> fleetOf(const SimulatedInstrumentOptions &first, int size)
{
    QVector<SimulatedInstrumentOptions> fleet;
    for (int i = 0; i < size; ++i) {
        SimulatedInstrumentOptions member = first;
        member.identity.modelName = instrumentModels().at(i % instrumentModels().size()).name;
        member.identity.serialNumber = quint16(first.identity.serialNumber + i);
        member.signal.seed = first.signal.seed + quint32(i);
        member.faults.seed = first.faults.seed + quint32(i);
        fleet += member;
    }
    return fleet;
}
