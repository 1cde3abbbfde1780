# Draws the pictures of docs/performance.md:  gnuplot -c plots.gp DATA_FOLDER OUTPUT_FOLDER
# The first line of a data file names its columns: a row or a number of limbs, then one column for each participant.
data_folder = ARG1
output_folder = ARG2

set encoding utf8
set border 3 linecolor rgb '#808080'
set tics nomirror out textcolor rgb '#303030'
set grid ytics linecolor rgb '#e4e4e4' linewidth 0.7
set style fill solid noborder

data(name) = data_folder.'/'.name.'.dat'
picture(name) = output_folder.'/'.name.'.svg'

array colours[5] = ['#08519c', '#74a9cf', '#238b45', '#d95f02', '#7570b3']

# ---- How many times as long as the engine each peer takes ----

set style data histograms
set style histogram clustered gap 1.5
set boxwidth 0.9
set xtics rotate by -45 left
set logscale y
set format y '%g'
set ylabel 'times as long as the engine' textcolor rgb '#303030'
set key at graph 0, 1.1 left top horizontal samplen 1 width 1 textcolor rgb '#303030' noenhanced
set arrow 1 from graph 0, first 1 to graph 1, first 1 nohead linecolor rgb '#303030' linewidth 1.2 front
set tmargin 3
set bmargin 8
set rmargin 9

names = 'stored record functions'
widths = '760 1000 1000'
do for [i = 1:words(names)] {
    name = word(names, i)
    set terminal svg size real(word(widths, i)),460 font 'sans-serif,13' background 'white' noenhanced
    set output picture(name)
    # Bars begin where the axis does: at the power of ten below the smallest one.
    set yrange [*:*]
    smallest = 0.5
    do for [c = 2:5] {
        stats data(name) using c nooutput
        smallest = STATS_min < smallest ? STATS_min : smallest
    }
    set yrange [10**floor(log10(smallest)):*]
    plot for [c = 2:5] data(name) using c:xtic(1) linecolor rgb colours[c - 1] title columnheader(c)
}

# ---- Time against significant limbs ----

reset
set encoding utf8
set terminal svg size 1000,420 font 'sans-serif,13' background 'white' noenhanced
set output picture('growth')
set border 3 linecolor rgb '#808080'
set tics nomirror out textcolor rgb '#303030'
set grid linecolor rgb '#e4e4e4' linewidth 0.7
set key below samplen 2 textcolor rgb '#303030' noenhanced
set xlabel 'significant limbs' textcolor rgb '#303030'
set ylabel 'nanoseconds' textcolor rgb '#303030'
set yrange [0:*]
set xrange [0:41]
set style data linespoints
set pointsize 0.4
set multiplot layout 1, 3
operations = 'mul div sqrt'
titles = 'product quotient root'
do for [i = 1:words(operations)] {
    name = word(operations, i)
    stats data(name) skip 1 nooutput
    set title word(titles, i) textcolor rgb '#303030'
    plot for [c = 2:STATS_columns] data(name) using 1:c linewidth 2 pointtype 7 \
         linecolor rgb colours[c - 1] title columnheader(c)
}
unset multiplot
