# How early a peak appears, against its abundance.
set terminal svg size 720,420 font "sans-serif,13" background "white"
set output picture
set grid lc rgb "#dddddd"
set border 3
set tics nomirror
set key noenhanced
set key right top
set logscale x
set xlabel "mean ions per pulse"
set ylabel "shift, m/z ppm"
set xrange [0.01:10]
set yrange [-35:1]
set object rectangle from 0.0408, graph 0 to 0.0834, graph 1 fc rgb "#dff0d8" fs solid noborder behind
set label "band" at 0.058, graph 0.06 center
plot data using 1:3 with lines lw 2 title "dead time of 10 ns", \
     data using 1:4 with lines lw 1 dt 2 title "straight line of weak peaks"
