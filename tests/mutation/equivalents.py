"""The reviewed list of mutants that change nothing: each with the reason why."""


class Equivalents:
    """`reasons` by mutants' keys."""

    def __init__(self, reasons):
        self.reasons = reasons

    @classmethod
    def read(cls, path):
        """Keys stand at the beginning of their lines, their reason indented below; # comments."""
        reasons, keys = {}, []
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
            if not line.strip() or line.startswith("#"):
                continue
            if line.startswith(" "):
                for key in keys:
                    reasons[key] += line.strip() + " "
                continue
            if keys and reasons[keys[-1]]:
                keys = []
            keys.append(line.rstrip())
            if keys[-1] in reasons:
                raise ValueError(f"{path}:{number}: listed twice: {keys[-1]}")
            reasons[keys[-1]] = ""
        unreasoned = [key for key, reason in reasons.items() if not reason]
        if unreasoned:
            raise ValueError(f"{path}: no reason given: {unreasoned[0]}")
        return cls(reasons)

    def __contains__(self, key):
        return key in self.reasons

    def stale(self, fates, untried=()):
        """The keys of which no mutant in the tried files survived, nor was left `untried`."""
        tried = {mutant.file for mutant, _ in fates}
        left = {mutant.key for mutant, fate in fates if fate != "killed"} | set(untried)
        return [key for key in self.reasons if key.split(" ")[0] in tried and key not in left]
