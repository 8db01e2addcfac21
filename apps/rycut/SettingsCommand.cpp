#include "SettingsCommand.h"

#include "CommandError.h"
#include "Console.h"
#include "settings/RyImageCutterSettings.h"

#include <QCommandLineParser>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Settings = RyImageCutterSettings;

struct Setting
{
    QString key;
    QString (*value)();
    void (*setValue)(const QString &value); ///< throws CommandError when there is no such value
};

QString debugFolder()
{
    return Settings::instance().debugFolder();
}

void setDebugFolder(const QString &value)
{
    Settings::instance().setDebugFolder(value);
}

QString maximalImageLength()
{
    return QString::number(Settings::instance().maximalImageLength());
}

void setMaximalImageLength(const QString &value)
{
    bool isNumber = false;
    const int length = value.toInt(&isNumber);
    if (!isNumber || length < 1)
        throwUsage(u"%1: '%2' is not a whole number from 1 up"_s.arg(
                Settings::maximalImageLengthKey, value));
    Settings::instance().setMaximalImageLength(length);
}

QString backgroundColours()
{
    QStringList names;
    for (const QColor &colour : Settings::instance().backgroundColors())
        names.append(colour.isValid() ? colour.name(QColor::HexArgb) : u"invalid"_s);
    return names.join(u',');
}

QList<QColor> coloursFrom(const QString &list)
{
    QList<QColor> colours;
    for (const QString &name : list.split(u',', Qt::SkipEmptyParts)) {
        const QColor colour(name.trimmed());
        if (!colour.isValid())
            throwUsage(u"%1: '%2' is not a colour; give a name, #RRGGBB or #AARRGGBB"_s.arg(
                    Settings::backgroundColorsKey, name));
        colours.append(colour);
    }
    return colours;
}

void setBackgroundColours(const QString &value)
{
    const QList<QColor> colours = coloursFrom(value);
    const QList<QColor> present = Settings::instance().backgroundColors();
    if (colours.size() != present.size())
        throwUsage(
                u"%1: there are %2 colours, but %3 were given"_s.arg(Settings::backgroundColorsKey)
                        .arg(present.size())
                        .arg(colours.size()));
    for (int i = 0; i < colours.size(); ++i) {
        if (colours.at(i) != present.at(i))
            Settings::instance().setBackgroundColors(i, colours.at(i));
    }
}

const std::array settings = {
        Setting{Settings::backgroundColorsKey, backgroundColours, setBackgroundColours},
        Setting{Settings::debugFolderKey, debugFolder, setDebugFolder},
        Setting{Settings::maximalImageLengthKey, maximalImageLength, setMaximalImageLength}};

QString list()
{
    QString text;
    for (const Setting &setting : settings)
        text += u"%1 = %2\n"_s.arg(setting.key, setting.value());
    return text;
}

const Setting &settingWithKey(const QString &key)
{
    QStringList keys;
    for (const Setting &setting : settings) {
        if (setting.key == key)
            return setting;
        keys.append(setting.key);
    }
    throwUsage(u"there is no setting '%1', only %2"_s.arg(key, keys.join(u", "_s)));
}

void set(const QString &key, const QString &value)
{
    settingWithKey(key).setValue(value);
    if (const QString error = Settings::saveError(); !error.isEmpty())
        throw CommandError(ExitStatus::CannotWrite, error);
}

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
            u"Shows and changes what is kept for all pictures, in\n%1.\n"
            "backgroundColors is a list such as #ffffffff,black,#80ff0000. Exit status: 0 done, "
            "1 wrong usage, 4 cannot write."_s.arg(Settings::fileName()));
    parser.addPositionalArgument(
            u"ACTION"_s, u"What to do with one of them. Without, all are shown as KEY = VALUE."_s,
            u"settings [get KEY | set KEY VALUE]"_s);
    parser.addOption({{u"h"_s, u"help"_s}, u"Show this help."_s});
    // A value may begin with a dash.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
}

/// Does what is asked for, and returns what is to be shown.
QString answer(const QStringList &words)
{
    const QString action = words.value(0);
    if (words.isEmpty())
        return list();
    if (action == "get"_L1 && words.size() == 2)
        return settingWithKey(words.at(1)).value() + u'\n';
    if (action != "set"_L1 || words.size() != 3)
        throwUsage(u"give 'get KEY', 'set KEY VALUE' or nothing; try 'rycut settings --help'"_s);
    set(words.at(1), words.at(2));
    return {};
}

} // namespace

QString SettingsCommand::name() const
{
    return u"settings"_s;
}

QString SettingsCommand::summary() const
{
    return u"Show and change what is kept for all pictures."_s;
}

ExitStatus SettingsCommand::run(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(QStringList(u"rycut"_s) + arguments))
        throwUsage(u"%1 Try 'rycut settings --help'."_s.arg(parser.errorText()));
    const QString text =
            parser.isSet(u"help"_s) ? parser.helpText() : answer(parser.positionalArguments());
    if (!Console::writeResult(text.toUtf8()))
        throw CommandError(ExitStatus::CannotWrite, u"standard output cannot be written"_s);
    return ExitStatus::Done;
}
