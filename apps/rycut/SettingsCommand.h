#pragma once

#include "Command.h"

/// `rycut settings`: shows and changes what a photo editor and this program share.
class SettingsCommand : public Command
{
public:
    QString name() const override;
    QString summary() const override;
    ExitStatus run(const QStringList &arguments) override;
};
