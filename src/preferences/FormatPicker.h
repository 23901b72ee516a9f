#pragma once

#include "model/PasteFormat.h"
#include "preferences/SettingsBinding.h"
#include "preferences/kit/SegmentedPicker.h"

/// A segmented picker of `formats`, bound to `setting`.
template <class Formats>
SegmentedPicker *makeFormatPicker(const QString &name, const Formats &formats,
                                  Setting<PasteFormat> &setting) {
    QStringList titles;
    for (const PasteFormat format : formats)
        titles.append(PasteFormats::displayName(format));
    auto *picker = new SegmentedPicker(name, titles);
    QObject::connect(picker, &SegmentedPicker::picked, picker,
                     [&setting, formats](int index) { setting = formats.at(index); });
    followSettings(picker, [picker, &setting, formats] {
        const auto found = std::find(formats.begin(), formats.end(), setting());
        picker->setCurrent(static_cast<int>(found - formats.begin()));
    });
    return picker;
}
