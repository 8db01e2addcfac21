#pragma once

#include "Command.h"

class Interruption;
struct CutOptions;
struct CutResult;

/// `rycut cut`: one picture, one lasso, one object.
class CutCommand : public Command
{
public:
    QString name() const override;
    QString summary() const override;
    ExitStatus run(const QStringList &arguments) override;

private:
    ExitStatus cut(const CutOptions &options) const;
    void readInputs(CutResult &result, const CutOptions &options,
                    const Interruption &interruption) const;
    void computeCut(CutResult &result, const CutOptions &options,
                    const Interruption &interruption) const;
    void enlarge(CutResult &result) const;
};
