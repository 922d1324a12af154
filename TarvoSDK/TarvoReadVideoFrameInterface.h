// TarvoReadVideoFrameInterface: a request for a video frame, selector 9.
#ifndef TARVOSDK_TARVOREADVIDEOFRAMEINTERFACE_H
#define TARVOSDK_TARVOREADVIDEOFRAMEINTERFACE_H

/// The host object of selector 9. Nothing is called on it.
class TarvoReadVideoFrameInterface
{
protected:
    virtual ~TarvoReadVideoFrameInterface() = default;
};

#endif
