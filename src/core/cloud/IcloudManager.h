#pragma once

/// The state of the cloud that replicates the user's records between devices.
class IcloudManager
{
public:
    IcloudManager() = delete;

    /// Whether the shared folder of the cloud is set and can be reached. Nothing sets one yet, so that it is
    /// not.
    static bool connectIcloud() { return false; }
};
