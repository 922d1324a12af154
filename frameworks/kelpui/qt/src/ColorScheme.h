// ColorScheme: the desktop's wish for light or dark, as its settings portal tells it.
#ifndef KELPUIQT_COLORSCHEME_H
#define KELPUIQT_COLORSCHEME_H

namespace kelpui::qt
{

/// As the portal numbers them.
enum class ColorScheme
{
    NoWish = 0,
    Dark = 1,
    Light = 2
};

/// NoWish where no portal runs; none is started for the question.
ColorScheme QueryColorScheme();

}  // namespace kelpui::qt

#endif
