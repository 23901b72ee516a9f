#include "bench/Benches.h"

QList<Row> benchRendering() {
    return {};
}
