# The peak of m/z 363 when it is strong, and in the band.
set terminal svg size 720,420 font "sans-serif,13" background "white"
set output picture
set grid lc rgb "#dddddd"
set border 3
set tics nomirror
set key noenhanced
set key right top
set xlabel "flight time less the true one, ns"
set ylabel "share of the counts"
set xrange [-2:2]
set yrange [0:]
set arrow from 0, graph 0 to 0, graph 1 nohead lc rgb "#888888" dt 2
plot data using 1:2 with histeps lw 2 title "at 75 V: 8 ions per pulse", \
     data using 1:3 with histeps lw 2 title "at 22 V: 0.07 ions per pulse"
