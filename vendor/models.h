#pragma once

#include "unit/unittype.h"

#include <QString>
#include <QStringList>

#include <optional>

/// The models as the catalogue and people name them.
namespace models {

/// Every key stem once, in the models' order.
[[nodiscard]] QStringList stems();

/// What the window calls the model: "HB4", "DSK10/DSK9", "TRK900 RIGHT".
[[nodiscard]] QString nameOf(const UnitModel& model);

/// The stem written like this, in either case.
[[nodiscard]] std::optional<QString> stemWritten(const QString& text);

/// The stem of the model meant: by stem or by a model's name, in either case, with or without separators
/// ("trk900-right", "LMB-1", "dsk9").
[[nodiscard]] std::optional<QString> stemMeant(const QString& text);

} // namespace models
