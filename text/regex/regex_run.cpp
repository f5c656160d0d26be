#include "text/regex/regex_run.h"

#include <utility>

namespace skerrow::text {

RegexRun::RegexRun(RegexCache& cache, const RegexLimits& limits, TextArgument subject,
                   TextArgument pattern, const RegexCall& call)
    : pattern_(pattern.required("The regular expression argument is NULL.")),
      subject_(subject.required("The match string argument is NULL.")),
      call_(call),
      units_(subject_.view()),
      range_(call.range.value_or(foundation::UnitRange::whole(units_))),
      monitor_(call.timeLimit),
      lease_(lease(cache, limits)) {
  if (lease_.required() == nullptr) return;
  from_ = range_.location;
  requiredScan_.emplace(*lease_.required(), range_.of(units_));
  required_ = requiredScan_->next();
}

RegexRun::~RegexRun() {
  if (monitor_.isLong()) lease_.regex().shrink();
}

RegexCache::Lease RegexRun::lease(RegexCache& cache, const RegexLimits& limits) {
  if (units_.size() > limits.longestText) {
    throw RegexArgumentException("String length exceeds INT_MAX.");
  }
  if (!range_.fitsIn(units_.size())) {
    throw RegexArgumentException("Range or index out of bounds.");
  }
  try {
    RegexCache::Lease lease = cache.lease(pattern_, call_.options);
    if (call_.capture < 0 || call_.capture > lease.regex().groupCount()) {
      throw RegexArgumentException("The capture argument is not valid.");
    }
    lease.setSubject(subject_, range_);
    return lease;
  } catch (RegexFailure& failure) {
    describe(failure.error());
    throw;
  } catch (const foundation::RegexFault&) {
    throw RegexInternalFault();
  }
}

bool RegexRun::mayMatchFrom(std::size_t position) {
  while (required_.isFound() && required_.location < position - range_.location) {
    required_ = requiredScan_->nextOverlapping();
  }
  return required_.isFound();
}

bool RegexRun::next() {
  if (requiredScan_ && !mayMatchFrom(from_)) return false;
  try {
    const bool isFound = lease_.regex().findNext(monitor_);
    if (isFound && requiredScan_) from_ = group(0).end();
    return isFound;
  } catch (const foundation::RegexFault& fault) {
    RegexError error;
    error.stage = RegexError::Stage::matching;
    error.fault = fault;
    error.regex = pattern_;
    error.options = call_.options;
    describe(error);
    throw RegexFailure(std::move(error));
  }
}

foundation::UnitRange RegexRun::group(std::int32_t number) const {
  try {
    return lease_.regex().group(number);
  } catch (const foundation::RegexFault&) {
    throw RegexInternalFault();
  }
}

void RegexRun::describe(RegexError& error) const {
  error.subject = subject_;
  error.subjectRange = range_;
}

}  // namespace skerrow::text
