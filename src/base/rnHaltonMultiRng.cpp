#include <base/rnHaltonMultiRng.imp>

namespace Kr
{

template class RnHaltonMultiRng<float, 2>;
template class RnHaltonMultiRng<float, 3>;
template class RnHaltonMultiRng<double, 2>;
template class RnHaltonMultiRng<double, 3>;

} // namespace Kr
