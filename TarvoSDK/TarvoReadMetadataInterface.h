// TarvoReadMetadataInterface: a request for metadata, selector 10.
#ifndef TARVOSDK_TARVOREADMETADATAINTERFACE_H
#define TARVOSDK_TARVOREADMETADATAINTERFACE_H

/// The host object of selector 10. It has no GetErrorInterface.
class TarvoReadMetadataInterface
{
protected:
    virtual ~TarvoReadMetadataInterface() = default;

public:
    virtual long long GetRawFirst() const = 0;
    virtual long long GetRawSecond() const = 0;
    virtual long long GetRawThird() const = 0;
    virtual void* GetRawBuffer() const = 0;
};

#endif
