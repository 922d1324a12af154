// TarvoReadSamplesRawInterface: a request for undecoded data, selector 8.
#ifndef TARVOSDK_TARVOREADSAMPLESRAWINTERFACE_H
#define TARVOSDK_TARVOREADSAMPLESRAWINTERFACE_H

/// The host object of selector 8. It has no GetErrorInterface.
class TarvoReadSamplesRawInterface
{
protected:
    virtual ~TarvoReadSamplesRawInterface() = default;

public:
    virtual long long GetRawFirst() const = 0;
    virtual long long GetRawSecond() const = 0;
    virtual void* GetRawBuffer() const = 0;
};

#endif
