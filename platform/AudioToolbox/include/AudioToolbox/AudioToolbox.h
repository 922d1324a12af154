// AudioToolbox: the platform's audio interface as a whole.
#ifndef AUDIOTOOLBOX_AUDIOTOOLBOX_H
#define AUDIOTOOLBOX_AUDIOTOOLBOX_H

#include <AudioToolbox/AudioConverter.h>
#include <AudioToolbox/AudioFile.h>
#include <AudioToolbox/AudioFormat.h>
#include <AudioToolbox/ExtendedAudioFile.h>
#include <CoreAudio/CoreAudioTypes.h>

#endif
