// TarvoPreOpenInterface: a first look at a file before it is opened, selector 3.
#ifndef TARVOSDK_TARVOPREOPENINTERFACE_H
#define TARVOSDK_TARVOPREOPENINTERFACE_H

class TarvoErrorInterface;

/// The host object of selector 3.
class TarvoPreOpenInterface
{
protected:
    virtual ~TarvoPreOpenInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
};

#endif
