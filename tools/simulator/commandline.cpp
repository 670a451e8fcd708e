#include "simulator/commandline.h"

#include "device/vocabulary.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <functional>

namespace
{

using Command = SimulatorCommand;

/** Takes the value of one option; false if it makes no sense. */
using Setter = std::function<bool(const QString &text, Command &command)>;

struct Option {
    const char *name;
    const char *valueName; ///< null: a switch without a value
    const char *description;
    Setter set;
};

// Where a member lives inside a command

template<typename T>
T &in(Command &command, T Command::*member)
{
    return command.*member;
}

template<typename T>
T &in(Command &command, T SimulatedInstrumentOptions::*member)
{
    return command.instrument.*member;
}

template<typename T>
T &in(Command &command, T InstrumentIdentity::*member)
{
    return command.instrument.identity.*member;
}

template<typename T>
T &in(Command &command, T ThermometrySignal::*member)
{
    return command.instrument.signal.*member;
}

template<typename T>
T &in(Command &command, T DialogueSettings::*member)
{
    return command.instrument.dialogue.*member;
}

template<typename T>
T &in(Command &command, T FaultPlan::*member)
{
    return command.instrument.faults.*member;
}

/** Stores a number within the bounds. */
template<typename Number>
bool store(const QString &text, Number &target, double lowest, double highest)
{
    bool known = false;
    const double number = text.toDouble(&known);
    if (!known || !(number >= lowest && number <= highest))
        return false;
    target = Number(number);
    return true;
}

// What kind of value an option takes

template<typename Member>
Setter number(Member member, double lowest, double highest)
{
    return [=](const QString &text, Command &command) {
        return store(text, in(command, member), lowest, highest);
    };
}

template<typename Member>
Setter probability(Member member)
{
    return number(member, 0.0, 1.0);
}

/** A number of strikes; "always" for a fault that does not wear off. */
Setter count(int FaultPlan::*member)
{
    return [=](const QString &text, Command &command) {
        if (text != QLatin1String("always"))
            return store(text, in(command, member), 0.0, 1.0e9);
        in(command, member) = FaultPlan::always;
        return true;
    };
}

/** Seconds on the command line, milliseconds in the member. */
template<typename Member>
Setter seconds(Member memberMs)
{
    return [=](const QString &text, Command &command) {
        double value = 0.0;
        const bool known = store(text, value, 0.0, 1.0e6);
        in(command, memberMs) = qRound(value * 1000.0);
        return known;
    };
}

template<typename Member>
Setter fixed(Member member, bool value)
{
    return [=](const QString &, Command &command) {
        in(command, member) = value;
        return true;
    };
}

template<typename Member>
Setter plainText(Member member)
{
    return [=](const QString &text, Command &command) {
        in(command, member) = text;
        return !text.isEmpty();
    };
}

bool setModel(const QString &text, Command &command)
{
    command.instrument.identity.modelName = text;
    return findPlayableModel(text) != nullptr;
}

bool setPortName(const QString &text, Command &command)
{
    command.portName = text;
    return !text.isEmpty() && !text.contains('/') && !text.startsWith('.');
}

bool setSignalKind(const QString &text, Command &command)
{
    const QStringList kinds = {"bath", "fixed-point", "ramp"};
    command.instrument.signal.kind = ThermometrySignal::Kind(kinds.indexOf(text));
    return kinds.contains(text);
}

bool setWordAddresses(const QString &text, Command &command)
{
    for (const QString &part : text.split(',')) {
        quint8 address = 0;
        if (!store(part, address, 0, 255))
            return false;
        command.instrument.dialogue.wordAddresses += address;
    }
    return true;
}

bool setSeed(const QString &text, Command &command)
{
    const bool known = store(text, command.instrument.signal.seed, 0, 4294967295.0);
    command.instrument.faults.seed = command.instrument.signal.seed;
    return known;
}

const QVector<Option> &instrumentOptions()
{
    using Identity = InstrumentIdentity;
    using Instrument = SimulatedInstrumentOptions;
    static const QVector<Option> options = {
        {"model", "name", "Model of the instrument (default: NOX B).", setModel},
        {"serial", "number", "Serial number, 0 to 65535 (default: 1234).",
         number(&Identity::serialNumber, 0, 65535)},
        {"own-name", "text", "Own name of an extended model, up to 16 characters.",
         plainText(&Identity::name)},
        {"older", nullptr, "An older instrument without an identification block.",
         fixed(&Identity::answersIdentification, false)},
        {"log-marks", "count", "Time marks in the recorded log, 0 for none (default: 40).",
         number(&Identity::loggerMarks, 0, 400)},
        {"port", "name", "Name of the port (default: the first free noxN).", setPortName},
        {"ports-directory", "path", "Directory of the port's link.",
         plainText(&Instrument::portsDirectory)},
        {"fleet", "count", "Play so many instruments, models mixed.",
         number(&Command::fleetSize, 1, 1000)},
        {"rate", "readings", "Readings per second in the stream, 0 for none (default: 4).",
         number(&Instrument::tokensPerSecond, 0, 10000)},
        {"paced", nullptr, "Send at 9600 baud instead of at once.",
         fixed(&Instrument::paced, true)},
        {"timeout", "seconds", "Silence of the host that ends a dialogue (default: 1.5).",
         seconds(&DialogueSettings::timeoutMs)},
        {"word-addresses", "list", "Addresses with the word dialogue, separated by commas.",
         setWordAddresses},
    };
    return options;
}

const QVector<Option> &signalOptions()
{
    using Signal = ThermometrySignal;
    static const QVector<Option> options = {
        {"signal", "kind", "bath, fixed-point or ramp (default: bath).", setSignalKind},
        {"set-point", "celsius", "Temperature of the bath or the fixed point (default: 30).",
         number(&Signal::setPointCelsius, -200, 850)},
        {"start", "celsius", "Temperature at which bath and ramp start (default: 21).",
         number(&Signal::startCelsius, -200, 850)},
        {"settling", "seconds", "Time constant of the bath (default: 120).",
         number(&Signal::settlingSeconds, 0.1, 1.0e6)},
        {"noise", "millikelvin", "Standard deviation of a reading (default: 1).",
         number(&Signal::noiseMillikelvin, 0, 1.0e6)},
        {"spread", "millikelvin", "Difference from channel to channel (default: 8).",
         number(&Signal::channelSpreadMillikelvin, -1.0e6, 1.0e6)},
        {"seed", "number", "Seed of the noise and of the faults (default: 1).", setSeed},
    };
    return options;
}

const QVector<Option> &faultOptions()
{
    using Plan = FaultPlan;
    static const QVector<Option> options = {
        {"lose", "probability", "Lose bytes at random.", probability(&Plan::lossProbability)},
        {"garble", "probability", "Alter bytes at random.", probability(&Plan::garbleProbability)},
        {"lose-byte", "n", "Lose the n-th byte of an answer.", count(&Plan::lostAnswerByte)},
        {"garble-byte", "n", "Alter the n-th byte of an answer.", count(&Plan::garbledAnswerByte)},
        {"ignore", "count", "Ignore so many addresses.", count(&Plan::ignoredAddressings)},
        {"wrong-echo", "count", "Echo so many addresses wrongly.",
         count(&Plan::wrongAddressEchoes)},
        {"extra-echo", "count", "Echo so many addresses with a second byte.",
         count(&Plan::extraEchoBytes)},
        {"no-sync", "count", "Fall silent after so many confirmed addresses.",
         count(&Plan::missingSynchronisations)},
        {"wrong-sync", "count", "Send so many wrong patterns of synchronisation.",
         count(&Plan::wrongPatterns)},
        {"no-confirm", "count", "Leave so many blocks without a confirmation.",
         count(&Plan::missingConfirmations)},
        {"wrong-confirm", "count", "Confirm so many blocks with a wrong byte.",
         count(&Plan::wrongConfirmations)},
        {"short", "count", "End so many blocks or records two bytes early.",
         count(&Plan::shortBlocks)},
        {"wrong-block-echo", "count", "Echo so many written blocks wrongly.",
         count(&Plan::wrongBlockEchoes)},
        {"silent-after", "blocks", "Fall silent after so many blocks of every dialogue.",
         number(&Plan::silentAfterBlocks, 0, 1.0e6)},
        {"stream-noise", "probability", "Spoil readings of the stream with foreign bytes.",
         probability(&Plan::streamNoiseProbability)},
        {"burst", "bytes", "Send one burst of foreign bytes in the stream.",
         number(&Plan::streamBurstBytes, 0, 1.0e6)},
        {"unplug-after", "seconds", "Pull the plug after this time.",
         seconds(&Command::unplugAfterMs)},
        {"unplug-after-bytes", "n", "Pull the plug after n bytes of an answer.",
         number(&Plan::unplugAfterAnswerBytes, 0, 1.0e6)},
        {"return-after", "seconds", "Put a pulled plug in again after this time.",
         seconds(&Plan::returnAfterMs)},
    };
    return options;
}

QCommandLineOption parserOption(const Option &option)
{
    QCommandLineOption result(QString::fromLatin1(option.name),
                              QString::fromLatin1(option.description));
    if (option.valueName)
        result.setValueName(QString::fromLatin1(option.valueName));
    return result;
}

SimulatorCommand told(SimulatorCommand::Kind kind, const QString &text = {})
{
    SimulatorCommand command;
    command.kind = kind;
    command.text = text;
    return command;
}

/** The command that the options of an accepted line describe. */
SimulatorCommand playCommand(const QCommandLineParser &parser, const QVector<Option> &options)
{
    SimulatorCommand command;
    for (const Option &option : options) {
        const QString name = QString::fromLatin1(option.name);
        if (parser.isSet(name) && !option.set(parser.value(name), command))
            return told(
                SimulatorCommand::Refuse,
                QStringLiteral("Impossible value for --%1: %2").arg(name, parser.value(name)));
    }
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
    const QVector<Option> options = instrumentOptions() + signalOptions() + faultOptions();
    for (const Option &option : options)
        parser.addOption(parserOption(option));

    if (!parser.parse(arguments))
        return told(SimulatorCommand::Refuse, parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return told(SimulatorCommand::Refuse, QStringLiteral("Unexpected argument: ") +
                                                  parser.positionalArguments().constFirst());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all")))
        return told(SimulatorCommand::ShowHelp, parser.helpText());
    if (parser.isSet(version))
        return told(SimulatorCommand::ShowVersion, QCoreApplication::applicationVersion());
    if (parser.isSet(listModels))
        return told(SimulatorCommand::ListModels);
    return playCommand(parser, options);
}

QVector<SimulatedInstrumentOptions> fleetOf(const SimulatedInstrumentOptions &first, int size)
{
    QVector<SimulatedInstrumentOptions> fleet;
    const auto models = instrumentModels();
    for (int i = 0; i < size; ++i) {
        SimulatedInstrumentOptions member = first;
        member.identity.modelName = modelName(*models.at(i % models.size()));
        member.identity.serialNumber = quint16(first.identity.serialNumber + i);
        member.signal.seed = first.signal.seed + quint32(i);
        member.faults.seed = first.faults.seed + quint32(i);
        fleet += member;
    }
    return fleet;
}
