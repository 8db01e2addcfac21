#pragma once

#include "CutOptions.h"
#include "PictureOptionsParser.h"

/// Reads the arguments of a command that cuts.
class CutOptionsParser : public PictureOptionsParser
{
public:
    CutOptions options() const;

protected:
    CutOptionsParser(const QString &command, const QString &description,
                     const QList<Argument> &arguments,
                     const QList<QCommandLineOption> &inputOptions = {});

    /// Where picture, lasso and gestures come from.
    virtual void readInputs(CutOptions &options) const = 0;

private:
    void addCutOptions();

    QColor color(const QString &name) const;
};
