' For the runner's own test: what is expected does not hold.
Expect "one", 1, 2
Report
