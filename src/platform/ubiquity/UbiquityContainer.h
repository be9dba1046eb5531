#pragma once

#include <QByteArray>
#include <QString>

/// The folder that the user's devices share. It is named as `cloudFolder` in `platform.json`; another program
/// replicates it.
class UbiquityContainer
{
public:
    UbiquityContainer() = delete;

    /// The path of the folder; a null text if none is named or what is named is no folder. Looked up at each
    /// call, so that a folder that is not mounted yet is found later.
    static QString path();
    /// What tells one folder from another; empty without a folder.
    static QByteArray identityToken();
};
